#include "options/OptionSettings.h"

#include "cddb/CddbServers.h"
#include "frame/IniFile.h"
#include "frame/NumericPrefix.h"

#include <algorithm>
#include <cmath>

namespace vinora {
namespace {

const QString kOption = QStringLiteral("Option");
const QString kSorted = QStringLiteral("Sorted");
const QString kServers = QStringLiteral("CDDBServers");

// A check box keeps its designed state when its key is missing.
void readBox(const IniDocument& ini, const QString& key, int buffer, bool& box)
{
    if (!ini.read(kOption, key, buffer).isEmpty()) {
        box = ini.number(kOption, key, buffer) != 0;
    }
}

// An option pair: the value 1 chooses the second button.
int readPair(const IniDocument& ini, const QString& key)
{
    return ini.number(kOption, key, 5) == 1 ? 1 : 0;
}

} // namespace

QString IndicatorSetting::label() const
{
    return QString::number(still ? 0 : slider * 100) + QStringLiteral(" мс");
}

QString indicatorKey(Indicator row)
{
    switch (row) {
    case Indicator::Due:
        return QStringLiteral("tmrDue");
    case Indicator::NewDisc:
        return QStringLiteral("tmrCD");
    case Indicator::DueCatalogue:
        break;
    }
    return QStringLiteral("tmrDueCatalogue");
}

OptionSettings loadOptionSettings(const IniFile& file, const QString& appFolder)
{
    const IniDocument ini = file.load();
    OptionSettings s;
    readBox(ini, QStringLiteral("ConfirmExit"), 5, s.ConfirmExit);
    readBox(ini, QStringLiteral("CheckCD"), 2, s.CheckCD);
    readBox(ini, QStringLiteral("SaveSortedCatalogue"), 5, s.SaveSortedCatalogue);
    readBox(ini, QStringLiteral("SaveSortedDueList"), 5, s.SaveSortedDueList);
    readBox(ini, QStringLiteral("AutoCompactDatabase"), 2, s.AutoCompactDatabase);
    readBox(ini, QStringLiteral("AutoResp"), 5, s.AutoResp);
    readBox(ini, QStringLiteral("SaveFileListOption"), 5, s.SaveFileListOption);
    readBox(ini, QStringLiteral("CheckDueOnStartup"), 2, s.CheckDueOnStartup);
    s.DblClick = readPair(ini, QStringLiteral("DblClick"));
    s.FilesAction = readPair(ini, QStringLiteral("FilesAction"));
    s.DblClickDue = readPair(ini, QStringLiteral("DblClickDue"));
    s.Drive = ini.read(kOption, QStringLiteral("Drive"), 4096).trimmed();

    const double server = ini.number(kOption, QStringLiteral("ServerCDDB"), 5);
    s.ServerCDDB = server > 6 || server < 0 ? 0 : static_cast<int>(server);
    const QString timeout = ini.read(kOption, QStringLiteral("ServerTimeout"), 5);
    s.ServerTimeout = timeout.isEmpty() ? QStringLiteral("30") : timeout;

    for (int i = 0; i < kIndicatorCount; ++i) {
        const auto row = static_cast<Indicator>(i);
        IndicatorSetting& indicator = s.indicator(row);
        if (ini.read(kOption, indicatorKey(row), 5).isEmpty()) {
            continue; // the designed row
        }
        const double value = ini.number(kOption, indicatorKey(row), 5);
        if (value == 1) {
            indicator.still = true;
            indicator.sliderEnabled = false;
        } else {
            indicator.still = false;
            indicator.sliderEnabled = true;
            indicator.slider = std::clamp(static_cast<int>(std::trunc(value / 100)), 0, kIndicatorSliderMax);
        }
    }

    const QString path = ini.read(kOption, QStringLiteral("PathLocalDB"), 255);
    s.PathLocalDB = path.isEmpty() ? appFolder : path;

    s.Email = ini.read(kServers, QStringLiteral("Email"), 256);
    for (int n = 2; n <= kCddbServerCount; ++n) {
        s.servers.append(ini.read(kServers, QStringLiteral("Server%1").arg(n), 256));
    }
    s.scheme = storedScheme(file);
    return s;
}

void saveOptionSettings(const IniFile& file, const OptionSettings& s)
{
    file.update([&s](IniDocument& ini) {
        const auto box = [&ini](const char* key, bool on) {
            ini.write(kOption, QString::fromLatin1(key), on ? QStringLiteral("1") : QStringLiteral("0"));
        };
        box("ConfirmExit", s.ConfirmExit);
        box("CheckCD", s.CheckCD);
        if (!s.Drive.isEmpty()) {
            ini.write(kOption, QStringLiteral("Drive"), s.Drive);
        }
        box("SaveSortedCatalogue", s.SaveSortedCatalogue);
        box("SaveSortedDueList", s.SaveSortedDueList);
        box("AutoCompactDatabase", s.AutoCompactDatabase);
        box("DblClick", s.DblClick == 1);
        box("AutoResp", s.AutoResp);
        box("FilesAction", s.FilesAction == 1);
        box("SaveFileListOption", s.SaveFileListOption);
        box("DblClickDue", s.DblClickDue == 1);
        box("CheckDueOnStartup", s.CheckDueOnStartup);
        ini.write(kOption, QStringLiteral("ServerCDDB"), QString::number(s.ServerCDDB));
        ini.write(kOption, QStringLiteral("ServerTimeout"), s.ServerTimeout);
        if (!s.SaveSortedCatalogue) {
            for (const char* key : {"PCCDsorted", "PCCDsortedDESC", "ADCDsorted", "ADCDsortedDESC"}) {
                ini.write(kSorted, QString::fromLatin1(key), QStringLiteral("0"));
            }
        }
        if (!s.SaveSortedDueList) {
            for (const char* key : {"DUEsorted", "DUEsortedDESC", "DUEsortedDisk"}) {
                ini.write(kSorted, QString::fromLatin1(key), QStringLiteral("0"));
            }
        }
        for (int i = 0; i < kIndicatorCount; ++i) {
            const auto row = static_cast<Indicator>(i);
            ini.write(kOption, indicatorKey(row), s.indicator(row).stored());
        }

        // An empty entry goes, so that the list offers its default again.
        const auto writeOrRemove = [&ini](const QString& key, const QString& value) {
            if (value.trimmed().isEmpty()) {
                ini.removeKey(kServers, key);
            } else {
                ini.write(kServers, key, value.trimmed());
            }
        };
        writeOrRemove(QStringLiteral("Email"), s.Email);
        for (int n = 2; n <= kCddbServerCount; ++n) {
            writeOrRemove(QStringLiteral("Server%1").arg(n), s.servers.value(n - 2));
        }
        ini.write(kOption, QStringLiteral("ColorScheme"), QString::number(static_cast<int>(s.scheme)));
    });
}

QString optionSettingsProblem(const OptionSettings& s)
{
    bool ok = false;
    const int seconds = s.ServerTimeout.trimmed().toInt(&ok);
    if (!ok || seconds < 10 || seconds > 99) {
        return QStringLiteral("Время ожидания должно быть числом секунд от 10 до 99.");
    }
    for (qsizetype i = 0; i < s.servers.size(); ++i) {
        const QString& text = s.servers[i];
        if (!text.trimmed().isEmpty() && !parseCddbServer(text)) {
            return QStringLiteral("Адрес сервера ") + QString::number(i + 2) + QStringLiteral(" ('") +
                   text.trimmed() +
                   QStringLiteral("') не распознан. Укажите его в виде \"имя\" или \"имя:порт\".");
        }
    }
    if (s.Email.trimmed().contains(u' ')) {
        return QStringLiteral("Адрес электронной почты не должен содержать пробелов.");
    }
    return {};
}

QString stepTimeout(const QString& text, int delta)
{
    if (text < QStringLiteral("10")) {
        return QStringLiteral("10");
    }
    const int value = static_cast<int>(std::clamp(numericPrefix(text) + delta, 10.0, 99.0));
    return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
}

SchemeChoice storedScheme(const IniFile& ini)
{
    const QString value = ini.read(kOption, QStringLiteral("ColorScheme"), 5).trimmed();
    if (value == u"1") {
        return SchemeChoice::Light;
    }
    return value == u"2" ? SchemeChoice::Dark : SchemeChoice::System;
}

} // namespace vinora
