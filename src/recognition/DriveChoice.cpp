#include "recognition/DriveChoice.h"

#include "frame/Prompter.h"
#include "recognition/Drives.h"

#include <QComboBox>

namespace vinora {

bool fillDriveChoice(QComboBox& selector, const IniFile& ini)
{
    const QStringList drives = GetCDDrives(ini);
    if (drives.isEmpty()) {
        selector.setEnabled(false);
        return false;
    }
    selector.addItems(drives);
    selector.setCurrentIndex(static_cast<int>(drives.indexOf(chosenDrive(ini, drives))));
    return true;
}

QString askForDiskImage(Prompter& prompter)
{
    return prompter.openFile(
        QStringLiteral("Образ диска"),
        QStringLiteral("Образы дисков (*.iso;*.cue;*.nrg;*.toc;*.img)|*.iso;*.cue;*.nrg;*.toc;*.img|Все "
                       "файлы (*.*)|*.*"),
        QString());
}

} // namespace vinora
