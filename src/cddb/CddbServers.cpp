#include "cddb/CddbServers.h"

#include "cddb/CdBase.h"
#include "frame/IniFile.h"

namespace vinora {
namespace {

const QString kSection = QStringLiteral("CDDBServers");
const QString kOption = QStringLiteral("Option");

// Entries 2..7 when the settings say nothing: the same service under its other name, and a
// server of one's own on this machine at the two usual ports.
const char* const kDefaultEntries[kCddbServerCount] = {
    "gnudb.gnudb.org:8880", "gnudb.org:8880", "localhost:8880", "localhost:888", "", "", ""};

} // namespace

std::optional<CddbServer> parseCddbServer(const QString& text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty() || trimmed.contains(u' ')) {
        return std::nullopt;
    }
    const qsizetype colon = trimmed.lastIndexOf(u':');
    if (colon < 0) {
        return CddbServer{trimmed};
    }
    bool ok = false;
    const uint port = trimmed.mid(colon + 1).toUInt(&ok);
    if (colon == 0 || !ok || port == 0 || port > 65535) {
        return std::nullopt;
    }
    return CddbServer{trimmed.left(colon), static_cast<quint16>(port)};
}

QList<std::optional<CddbServer>> cddbServers(const QStringList& own)
{
    QList<std::optional<CddbServer>> servers;
    for (int n = 1; n <= kCddbServerCount; ++n) {
        const QString text = n > 1 ? own.value(n - 2) : QString();
        servers.append(parseCddbServer(text.isEmpty() ? QString::fromLatin1(kDefaultEntries[n - 1]) : text));
    }
    return servers;
}

QStringList ownCddbServerEntries(const IniFile& ini)
{
    const IniDocument settings = ini.load();
    QStringList own;
    for (int n = 2; n <= kCddbServerCount; ++n) {
        own.append(settings.read(kSection, QStringLiteral("Server%1").arg(n), 256));
    }
    return own;
}

QList<std::optional<CddbServer>> cddbServers(const IniFile& ini)
{
    return cddbServers(ownCddbServerEntries(ini));
}

QStringList cddbServerItems(const IniFile& ini)
{
    return cddbServerItems(ownCddbServerEntries(ini));
}

QStringList cddbServerItems(const QStringList& own)
{
    QStringList items;
    const QList<std::optional<CddbServer>> servers = cddbServers(own);
    for (qsizetype i = 0; i < servers.size(); ++i) {
        QString host = QStringLiteral("(не задан)");
        if (const std::optional<CddbServer>& server = servers[i]) {
            host = server->port == CdBase::kDefaultPort ? server->host
                                                        : server->host + u':' + QString::number(server->port);
        }
        items.append(QString::number(i + 1) + QStringLiteral(": ") + host);
    }
    return items;
}

int preselectedServer(const IniFile& ini)
{
    if (ini.read(kOption, QStringLiteral("ServerCDDB"), 5).isEmpty()) {
        return 0;
    }
    const double index = ini.number(kOption, QStringLiteral("ServerCDDB"), 5);
    return index > 6 || index < 0 ? 0 : static_cast<int>(index);
}

QString defaultCddbEmail(const QString& hostName)
{
    return qEnvironmentVariable("USER", QStringLiteral("user")) + u'@' + hostName;
}

void prepareCddbSession(CdBase& session, const IniFile& ini, const QString& choice)
{
    session.setAppName(QStringLiteral("vinora"));
    const QString appName = ini.read(kSection, QStringLiteral("AppName"), 256);
    if (!appName.isEmpty()) {
        session.setAppName(appName);
    }
    session.setHostName(session.GetMyHostName());
    const QString email = ini.read(kSection, QStringLiteral("Email"), 256);
    session.setEmail(email.isEmpty() ? defaultCddbEmail(session.HostName()) : email);

    const int entry = choice.isEmpty() ? 0 : choice.at(0).digitValue();
    if (entry >= 1 && entry <= kCddbServerCount) {
        if (const std::optional<CddbServer> server = cddbServers(ini)[entry - 1]) {
            session.setServer(server->host);
            session.setPort(server->port);
        }
    }
    const QString timeout = ini.read(kOption, QStringLiteral("ServerTimeout"), 5);
    session.setConnectTimeout(
        timeout.isEmpty() ? 30000
                          : static_cast<int>(ini.number(kOption, QStringLiteral("ServerTimeout"), 5) * 1000));
}

} // namespace vinora
