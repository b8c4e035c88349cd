#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace vinora {

class CdBase;
class IniFile;

// The seven CDDB servers the dialogs offer. The first is the service that still answers;
// the other six are the user's, as "host:port" in Server2..Server7 of section CDDBServers
// of vinora.ini. The same section holds the handshake's Email and AppName: public servers
// refuse clients they do not know, so a user with a registered name puts it there.
struct CddbServer
{
    QString host;
    quint16 port = 8880;
};

inline constexpr int kCddbServerCount = 7;

// "host:port" or "host" (port 8880); nothing for a text that is neither.
std::optional<CddbServer> parseCddbServer(const QString& text);

// Entries 1..7; an entry the settings leave empty or spoil is nothing.
QList<std::optional<CddbServer>> cddbServers(const IniFile& ini);
// The same from the texts of entries 2..7 (an empty text stands for the entry's default),
// as the settings hold them or as the options dialog has them while they are typed.
QList<std::optional<CddbServer>> cddbServers(const QStringList& own);
QStringList ownCddbServerEntries(const IniFile& ini);

// The texts of the server list: the number, ":", a blank and the host (with ":port" when it
// is not 8880); an empty entry reads "(не задан)".
QStringList cddbServerItems(const IniFile& ini);
QStringList cddbServerItems(const QStringList& own);

// The index of the list to preselect: ServerCDDB of Option, 0 when empty or above 6.
int preselectedServer(const IniFile& ini);

// Prepares a session as the dialogs run it: application name and e-mail of the handshake,
// this machine's name, the server of the list text `choice` (its first character 1..7; any
// other, or an empty entry, leaves the session's default) and the time-out of ServerTimeout
// of Option in seconds (30 when not set).
void prepareCddbSession(CdBase& session, const IniFile& ini, const QString& choice);

// The handshake's e-mail when the settings give none: the user's login at this machine.
QString defaultCddbEmail(const QString& hostName);

} // namespace vinora
