#include "frame/IniFile.h"
#include "recognition/Drives.h"
#include "recognition/MountPoints.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QTemporaryDir>

using namespace vinora;

class tst_drives : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    IniFile ini() const { return IniFile(m_dir.filePath("vinora.ini")); }

private slots:
    void init() { QFile::remove(m_dir.filePath("vinora.ini")); }

    void virtualDrivesAreKept()
    {
        QVERIFY(addVirtualDrive(ini(), "/data/Диски/one.iso"));
        QVERIFY(addVirtualDrive(ini(), "/data/two.cue"));
        QVERIFY(addVirtualDrive(ini(), "/data/three.nrg"));
        QVERIFY(!addVirtualDrive(ini(), "/data/two.cue"));
        QCOMPARE(virtualDrives(ini()),
                 (QStringList{"/data/Диски/one.iso", "/data/two.cue", "/data/three.nrg"}));
        QVERIFY(removeVirtualDrive(ini(), "/data/Диски/one.iso"));
        QVERIFY(!removeVirtualDrive(ini(), "/data/Диски/one.iso"));
        QCOMPARE(virtualDrives(ini()), (QStringList{"/data/two.cue", "/data/three.nrg"}));
        const QStringList drives = GetCDDrives(ini());
        QCOMPARE(drives.mid(drives.size() - 2), (QStringList{"/data/two.cue", "/data/three.nrg"}));
        QCOMPARE(drives.mid(0, drives.size() - 2), physicalDrives());
    }

    void chosenDrive_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("chosen");
        QTest::newRow("missing: the first") << QString("") << "/dev/sr0";
        QTest::newRow("stored and present") << QString("/img/b.iso") << "/img/b.iso";
        QTest::newRow("stored but gone: the first") << QString("/img/gone.iso") << "/dev/sr0";
    }

    void chosenDrive()
    {
        QFETCH(QString, stored);
        if (!stored.isEmpty()) {
            setChosenDrive(ini(), stored);
        }
        QTEST(vinora::chosenDrive(ini(), {"/dev/sr0", "/img/b.iso"}), "chosen");
        QCOMPARE(vinora::chosenDrive(ini(), {}), QString());
    }

    void mountPoints()
    {
        const QString table = "sysfs /sys sysfs rw 0 0\n"
                              "/dev/sr7 /media/user/My\\040Disc iso9660 ro 0 0\n"
                              "/dev/sda1 / ext4 rw 0 0\n";
        QCOMPARE(mountPointOf("/dev/sr7", table), QStringLiteral("/media/user/My Disc"));
        QCOMPARE(mountPointOf("/dev/sr8", table), QString());
        QCOMPARE(mountPointOf(m_dir.filePath("image.iso"), table), QString());
    }
};

VINORA_TEST_MAIN(tst_drives)
#include "tst_drives.moc"
