#pragma once

#include <QString>
#include <QStringList>
#include <array>

namespace vinora {

class IniFile;

// One blink indicator of the options: its slider in tenths of a second and the tick that
// makes the indicator still. Stored as slider × 100 milliseconds, or "1" when still.
struct IndicatorSetting
{
    int slider = 0;
    bool still = false;
    bool sliderEnabled = true; // the new-disc row starts with its slider disabled

    // The label beside the slider: "0 мс" for a still indicator, else the slider's time.
    QString label() const;
    // The text written to the settings file.
    QString stored() const { return still ? QStringLiteral("1") : QString::number(slider * 100); }
};

// The three indicator rows, in the order of the dialog.
enum class Indicator { Due, NewDisc, DueCatalogue };
inline constexpr int kIndicatorCount = 3;
inline constexpr int kIndicatorSliderMax = 50;

// The colour scheme the program uses: the desktop's, or light or dark whatever it says.
enum class SchemeChoice { System = 0, Light = 1, Dark = 2 };

// Everything the options dialog shows and writes. Loaded from vinora.ini with the defaults
// of a key that is missing, and written back in one change of the file.
struct OptionSettings
{
    // Section Option.
    bool ConfirmExit = true;
    bool CheckCD = true;
    bool SaveSortedCatalogue = false;
    bool SaveSortedDueList = false;
    bool AutoCompactDatabase = false;
    bool AutoResp = false;
    bool SaveFileListOption = false;
    bool CheckDueOnStartup = true;
    int DblClick = 0;    // 0 the disc editor, 1 the file or track list
    int FilesAction = 0; // 0 the file's folder, 1 the file itself
    int DblClickDue = 0; // 0 the borrower's statistics, 1 the return date
    QString Drive;       // empty: none chosen (no drive at all)
    int ServerCDDB = 0;
    QString ServerTimeout = QStringLiteral("30");
    std::array<IndicatorSetting, kIndicatorCount> indicators{IndicatorSetting{25, false, true},
                                                             IndicatorSetting{0, false, false},
                                                             IndicatorSetting{15, false, true}};
    QString PathLocalDB;

    // What this program adds: the handshake's e-mail, servers 2..7, the colour scheme.
    QString Email;
    QStringList servers; // six entries, "host:port" or empty
    SchemeChoice scheme = SchemeChoice::System;

    IndicatorSetting& indicator(Indicator row) { return indicators[static_cast<std::size_t>(row)]; }
    const IndicatorSetting& indicator(Indicator row) const
    {
        return indicators[static_cast<std::size_t>(row)];
    }
};

// The keys of the three indicator rows in section Option.
QString indicatorKey(Indicator row);

// Reads the settings as the dialog opens; `appFolder` stands for a missing PathLocalDB.
OptionSettings loadOptionSettings(const IniFile& ini, const QString& appFolder);

// Writes every key but PathLocalDB in one change of the file. A catalogue or loan-list
// order that is no longer to be kept is erased: "0" to its keys of section Sorted (the DVD
// catalogue's pair is left as it is). Throws AppError when the file cannot be written.
void saveOptionSettings(const IniFile& ini, const OptionSettings& settings);

// The text a problem with the values keeps from being written, or empty when they can be:
// the time-out must be a number of seconds from 10 to 99, each server "host" or "host:port".
QString optionSettingsProblem(const OptionSettings& settings);

// One step of the time-out field: a text that sorts below "10" becomes "10", else the
// number moves by `delta` within 10..99, written with two digits.
QString stepTimeout(const QString& text, int delta);

// The colour scheme in the settings (ColorScheme of Option), System when missing or unknown.
SchemeChoice storedScheme(const IniFile& ini);

} // namespace vinora
