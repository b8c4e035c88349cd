#include "DiscFixtures.h"
#include "frame/Cp1251.h"
#include "recognition/DiscIdentity.h"
#include "recognition/frmSelectCategory.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QTemporaryDir>

using namespace vinora;

namespace {

// A chooser that answers from a list and counts how often it was asked.
struct ScriptedChooser
{
    QList<std::optional<QString>> answers;
    int asked = 0;
    CategoryChooser function()
    {
        return [this]() -> std::optional<QString> {
            ++asked;
            if (answers.isEmpty()) {
                throw test::UnexpectedPrompt{"category"};
            }
            return answers.takeFirst();
        };
    }
};

const QString kCancelled = QStringLiteral(
    "Вы не указали категорию диска, он не будет привязан не к одной из категорий. Продолжить?");

} // namespace

class tst_discidentity : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    test::DiscFixtures m_discs{m_dir.path()};
    QString m_audio, m_data, m_udf;

private slots:
    void initTestCase()
    {
        m_audio = m_discs.audioCue("album", {15000, 15000, 15000});
        m_data = m_discs.iso("data.iso", {"-J", "-V", "DATA"});
        m_udf = m_discs.udf("movie.udf", "MOVIE");
    }

    void kinds_data()
    {
        QTest::addColumn<QString>("drive");
        QTest::addColumn<QString>("stored"); // skipcd.ini entry, "" for none
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("hasId");
        QTest::newRow("audio") << m_audio << QString("") << "AudioCD" << true;
        QTest::newRow("data") << m_data << QString("") << "PcCD" << true;
        QTest::newRow("UDF") << m_udf << QString("") << "DVD" << true;
        QTest::newRow("nothing") << m_dir.filePath("none.iso") << QString("") << "" << false;
        QTest::newRow("audio stored as n/a") << m_audio << QString("n/a") << "" << false;
        QTest::newRow("audio stored as PC") << m_audio << QString("PC") << "PcCD" << true;
        QTest::newRow("data stored as DVD") << m_data << QString("DVD") << "DVD" << true;
        QTest::newRow("UDF stored as AD") << m_udf << QString("AD") << "AudioCD" << true;
    }

    void kinds()
    {
        QFETCH(QString, drive);
        QFETCH(QString, stored);
        QFETCH(QString, kind);
        QFETCH(bool, hasId);
        test::TestApp app;
        ScriptedChooser chooser;
        const VolumeInfo volume = readVolumeInfo(drive);
        if (!stored.isEmpty()) {
            app.ctx.skipIni().write("CD", SerialToID(volume.serial), stored);
        }
        QCOMPARE(GetDiskIDcheck(app.ctx, drive, chooser.function()), kind);
        const QString id = GetDiskID(app.ctx, drive, chooser.function());
        QCOMPARE(id, hasId ? SerialToID(volume.serial) : QString());
        QCOMPARE(app.ctx.LastDiscKind, kind);
        QCOMPARE(chooser.asked, 0);
    }

    void serialToId_data()
    {
        QTest::addColumn<quint32>("serial");
        QTest::addColumn<QString>("id");
        QTest::newRow("zero") << 0u << "";
        QTest::newRow("leading zeros dropped") << 0x00094200u << "94200";
        QTest::newRow("full") << 0xA1B2C3D4u << "A1B2C3D4";
    }

    void serialToId()
    {
        QFETCH(quint32, serial);
        QTEST(SerialToID(serial), "id");
    }

    void propertiesDecide_data()
    {
        QTest::addColumn<quint32>("length");
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("fs");
        QTest::addColumn<QString>("kind");
        QTest::newRow("audio") << 221u << QString("Audio CD") << QString("CDFS") << "AudioCD";
        QTest::newRow("long names") << 221u << QString("Audio CDX") << QString("CDFS") << "AudioCD";
        QTest::newRow("data, long names") << 221u << QString("Backup") << QString("CDFS") << "PcCD";
        QTest::newRow("data, Joliet") << 110u << QString("Audio CD") << QString("CDFS") << "PcCD";
        QTest::newRow("UDF") << 255u << QString("Movie") << QString("UDF") << "DVD";
        QTest::newRow("255 but not UDF") << 255u << QString("Mac") << QString("HFS") << "";
        QTest::newRow("other length") << 31u << QString("Old") << QString("ISO") << "";
    }

    void propertiesDecide()
    {
        QFETCH(quint32, length);
        QFETCH(QString, label);
        QFETCH(QString, fs);
        QTEST(kindFromProperties(VolumeInfo{true, label, 0x1234, length, fs}), "kind");
    }

    void unknownKindIsAskedOnce()
    {
        test::TestApp app;
        const VolumeInfo hfs{true, "Mac disc", 0xBEEF, 255, "HFS"};
        QVERIFY(!decideKind(app.ctx, hfs));
        ScriptedChooser chooser;
        chooser.answers = {std::nullopt, std::nullopt, "PC"};
        app.prompter.answer(Answer::No); // not satisfied with no category: asked again
        app.prompter.answer(Answer::No);
        QCOMPARE(AskCategory(app.ctx, SerialToID(hfs.serial), chooser.function()), "PcCD");
        QCOMPARE(chooser.asked, 3);
        QCOMPARE(app.prompter.texts(), (QStringList{kCancelled, kCancelled}));
        QCOMPARE(app.ctx.skipIni().read("CD", "BEEF", 15), "PC");
        QCOMPARE(decideKind(app.ctx, hfs), std::optional<QString>("PcCD"));
        QVERIFY(!app.ctx.DialogDone);
    }

    void refusedCategoryIsStoredAsNone()
    {
        test::TestApp app;
        ScriptedChooser chooser;
        chooser.answers = {std::nullopt};
        app.prompter.answer(Answer::Yes);
        QCOMPARE(AskCategory(app.ctx, "ABC", chooser.function()), QString());
        QVERIFY(cp1251::decode(test::readFile(app.file("skipcd.ini"))).contains("[CD]\nABC=n/a"));
    }

    void dialogChoosesThroughThePrompter()
    {
        test::TestApp app;
        app.prompter.handleModal([](QDialog& dialog) {
            auto& select = static_cast<frmSelectCategory&>(dialog);
            select.choose("DVD");
            return int(QDialog::Accepted);
        });
        app.prompter.handleModal([](QDialog&) { return int(QDialog::Rejected); });
        const CategoryChooser chooser = frmSelectCategory::chooser(app.ctx);
        QCOMPARE(chooser(), std::optional<QString>("DVD"));
        QCOMPARE(chooser(), std::nullopt);
        frmSelectCategory fresh;
        QCOMPARE(fresh.category(), "AD"); // one choice always stands
    }

    void changeCategory()
    {
        test::TestApp app;
        const QString id = SerialToID(readVolumeInfo(m_data).serial);
        app.ctx.CurrentDiscID = id;
        ScriptedChooser chooser;
        chooser.answers = {"AD"};
        app.prompter.answer(Answer::Yes);
        QVERIFY(ChangeDiscCategory(app.ctx, m_data, chooser.function()));
        QCOMPARE(ReadSkipCD(app.ctx, id), "AD");
        QCOMPARE(GetDiskIDcheck(app.ctx, m_data, chooser.function()), "AudioCD");

        // A disc stored as n/a cannot be corrected: there is "no disc".
        app.ctx.skipIni().write("CD", id, "n/a");
        app.prompter.answer(Answer::Yes);
        QVERIFY(!ChangeDiscCategory(app.ctx, m_data, chooser.function()));
        QCOMPARE(app.prompter.texts().last(), "В устройстве " + m_data + " компакт-диск не обнаружен!");
        app.prompter.answer(Answer::No);
        QVERIFY(!ChangeDiscCategory(app.ctx, m_data, chooser.function()));
    }
};

VINORA_TEST_MAIN(tst_discidentity)
#include "tst_discidentity.moc"
