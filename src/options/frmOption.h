#pragma once

#include "options/OptionSettings.h"
#include "ui/DesktopTheme.h"

#include <QDialog>
#include <array>
#include <optional>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QRadioButton;
class QSlider;

namespace vinora {

class AppContext;

// The colour scheme a choice stands for: none means the desktop's.
std::optional<ColorScheme> colorSchemeOf(SchemeChoice choice);

// "Параметры": every setting of the program in one dialog. OK writes them; the folder of
// the local database and the list of disc images change at once, whatever button closes it.
class frmOption : public QDialog
{
    Q_OBJECT
public:
    explicit frmOption(AppContext& ctx, QWidget* parent = nullptr);

    void Form_Load();
    void cmdOK();     // imgButton 0
    void cmdCancel(); // imgButton 1
    void cmdPathLocalDB();
    void cmdImageAdd();
    void cmdImageRemove();
    // One step of udTimeout, or of the Up and Down keys in txtTimeout.
    void stepTimeout(int delta);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct IndicatorRow
    {
        QSlider* slider = nullptr;
        QCheckBox* still = nullptr;
        QLabel* label = nullptr;
    };

    QWidget* buildGeneralTab();
    QWidget* buildMouseTab();
    QWidget* buildCddbTab();
    QWidget* buildIndicatorTab();
    QWidget* buildDatabaseTab();
    QWidget* buildLookTab();
    QButtonGroup* addPair(QWidget* page, const QString& caption, const QString& first, const QString& second,
                          int firstIndex);
    void fillDrives(const QString& chosen);
    void fillImages();
    void indicatorTicked(int row);
    void showServerEdits();
    OptionSettings fromControls() const;
    SchemeChoice chosenScheme() const;

    AppContext& m_ctx;
    SchemeChoice m_schemeOnOpen = SchemeChoice::System;
    QCheckBox* chConfirmExit = nullptr;
    QCheckBox* chCheckCD = nullptr;
    QComboBox* cmbDrive = nullptr;
    QCheckBox* chSaveSortedCatalogue = nullptr;
    QLabel* lblSaveSortedCatalogue = nullptr;
    QCheckBox* chSaveSortedDueList = nullptr;
    QCheckBox* chAutoCompactDatabase = nullptr;
    QCheckBox* chAutoResp = nullptr;
    QCheckBox* chSaveFileListOption = nullptr;
    QCheckBox* chCheckDueOnStartup = nullptr;
    QButtonGroup* m_dblClick = nullptr;
    QButtonGroup* m_filesAction = nullptr;
    QButtonGroup* m_dblClickDue = nullptr;
    std::array<QRadioButton*, 6> optDblClick{};
    QComboBox* cmbServer = nullptr;
    QLineEdit* txtTimeout = nullptr;
    QLineEdit* txtEmail = nullptr;
    std::array<QLineEdit*, 6> txtServer{};
    std::array<IndicatorRow, kIndicatorCount> m_indicators{};
    QLineEdit* txtPathLocalDB = nullptr;
    QListWidget* lstImages = nullptr;
    std::array<QRadioButton*, 3> optScheme{};
};

} // namespace vinora
