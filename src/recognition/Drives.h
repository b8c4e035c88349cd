#pragma once

#include <QString>
#include <QStringList>

namespace vinora {

class IniFile;

// The optical drives of this machine (device nodes) followed by the disc images the user
// registered as virtual drives. Every drive selector shows this list.
QStringList GetCDDrives(const IniFile& ini);

// The device nodes of the optical drives, as libcdio finds them.
QStringList physicalDrives();

// Disc images registered as drives, kept in section VirtualDrives of vinora.ini.
QStringList virtualDrives(const IniFile& ini);
// Registers an image; false when it is registered already.
bool addVirtualDrive(const IniFile& ini, const QString& imagePath);
// Forgets an image; the image file itself is not touched.
bool removeVirtualDrive(const IniFile& ini, const QString& imagePath);

// The drive chosen for recognition and scanning (key Drive of Option): the stored one when
// it is still in `drives`, else the first, else empty.
QString chosenDrive(const IniFile& ini, const QStringList& drives);
void setChosenDrive(const IniFile& ini, const QString& drive);

} // namespace vinora
