#include "../cddb/FakeCddbServer.h"
#include "../recognition/DiscFixtures.h"
#include "catalogue/frmAddCD.h"
#include "cddb/frmCDDB.h"
#include "contents/CdPlayerIni.h"
#include "frame/Cp1251.h"
#include "recognition/DiscIdentity.h"
#include "recognition/Drives.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

using namespace vinora;

namespace {

const QString kCaption = "Запрос сервера CDDB - ";

// The add dialog of the audio catalogue with a CUE image in the drive whose CDDB id is
// 12025d03 (the country record the fake server holds), and the server as entry 2 of the list.
struct AddingAudio
{
    explicit AddingAudio(const QString& cue) : cue(cue)
    {
        Reanimator(app.ctx, 0);
        started = server.start();
        addVirtualDrive(app.ctx.ini(), cue);
        setChosenDrive(app.ctx.ini(), cue);
        app.ctx.ini().write("CDDBServers", "Server2", "127.0.0.1:" + QString::number(server.port()));
        app.ctx.ini().write("Option", "ServerCDDB", "1");
        app.ctx.ini().write("Option", "ServerTimeout", "5");
        discId = GetDiskID(app.ctx, cue, {});
    }

    // Runs the add with the add dialog's boxes set by `setUp`, OK pressed; the CDDB dialog
    // is left to run by `query` (by default to its end).
    bool add(
        const std::function<void(QDialog&)>& setUp,
        std::function<int(QDialog&)> query = [](QDialog& d) { return d.exec(); })
    {
        app.prompter.handleModal([setUp](QDialog& d) {
            d.show();
            setUp(d);
            d.findChild<QPushButton*>("imgButton0")->click();
            return d.result();
        });
        app.prompter.handleModal(std::move(query));
        return runAddDisc(app.ctx, Category::Audio, nullptr);
    }

    QString row(const QString& fields) const
    {
        Db db(app.ctx.MainDBPath);
        return db.scalar("SELECT " + fields + " FROM Аудио a JOIN Стиль s ON s.КодСтиля = a.КодСтиля")
            .toString();
    }
    int rows() const { return Db(app.ctx.MainDBPath).scalar("SELECT count(*) FROM Аудио").toInt(); }
    QStringList tracks() const
    {
        Db db(app.ctx.TracksDBPath);
        return db.texts("SELECT Название FROM Треки WHERE ДискID = ? ORDER BY Номер", {discId});
    }
    bool listExists() const
    {
        Db db(app.ctx.TracksDBPath);
        return ContentsLists(db, ContentsKind::Tracks).exists(discId);
    }

    QString cue;
    test::TestApp app;
    test::FakeCddbServer server{VINORA_TEST_DATA "/cddb"};
    bool started = false;
    QString discId;
};

void tick(QDialog& d, const QString& name)
{
    d.findChild<QCheckBox*>(name)->click();
}

const QStringList kCountrySongs{"I'm Your Puppet", "Me And Jacky", "If You Don't Like Country"};

} // namespace

class tst_audiosources : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_country = m_discs.audioCue("country", {11993, 19539, 13880}); }

    void serverAnswerBecomesANewDisc_data()
    {
        QTest::addColumn<bool>("saveToIni");
        QTest::newRow("database only") << false;
        QTest::newRow("and cdplayer.ini") << true;
    }
    void serverAnswerBecomesANewDisc()
    {
        QFETCH(bool, saveToIni);
        AddingAudio a(m_country);
        QVERIFY(a.started);
        QVERIFY(!a.discId.isEmpty());
        QVERIFY(a.add([&](QDialog& d) {
            QCOMPARE(d.findChild<QComboBox*>("cmbServer")->currentText(),
                     "2: 127.0.0.1:" + QString::number(a.server.port()));
            tick(d, "chQuery0");
            if (saveToIni) {
                tick(d, "chTrackSave");
            }
        }));
        QCOMPARE(a.row("Номер || '|' || Название || '|' || Альбом || '|' || Год || '|' || s.Стиль || '|' || "
                       "Записей1 || '|' || Время1 || '|' || ДискID1 || '|' || ДискID1_d"),
                 "1|Ernest Ray Everett - Single CD|Ernest Ray Everett - Single CD|2026|Country|3|10:56|" +
                     a.discId + '|' + a.discId);
        QCOMPARE(a.tracks(), kCountrySongs);
        QVERIFY(a.server.received.contains("cddb query 12025d03 3 150 12143 31682 605\r\n"));
        QCOMPARE(QFile::exists(cdPlayerIni(a.app.ctx).path()), saveToIni);
        if (saveToIni) {
            QCOMPARE(cdPlayerIni(a.app.ctx).read(a.discId, "2", 255), kCountrySongs[2]);
        }
        QCOMPARE(a.app.ctx.CatalogueQueryFilter, QString());
    }

    void failedQueryLeavesNoTrace_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QString>("message");
        QTest::newRow("no such disc") << "cddb query" << QByteArray("202 No match for disc ID 12025d03.\r\n")
                                      << "На сервере отсутствует информация о этом диске!";
        QByteArray tooManySongs = "210 country 12025d03\r\nDTITLE=A / B\r\n";
        for (int i = 0; i <= 100; ++i) {
            tooManySongs += "TTITLE" + QByteArray::number(i) + "=x\r\n";
        }
        QTest::newRow("damaged record") << "cddb read" << tooManySongs + ".\r\n"
                                        << "Данные повреждены!";
        QTest::newRow("unknown client") << "cddb hello" << QByteArray("500 Unknown developer email\r\n")
                                        << "Сервер отказал в соединении: 500 Unknown developer email";
    }
    void failedQueryLeavesNoTrace()
    {
        QFETCH(QString, command);
        QFETCH(QByteArray, reply);
        QFETCH(QString, message);
        AddingAudio a(m_country);
        a.server.reply(command, reply);
        QVERIFY(!a.add([](QDialog& d) { tick(d, "chQuery0"); }));
        QCOMPARE(a.app.prompter.texts(), QStringList{message});
        QCOMPARE(a.rows(), 0);
        QVERIFY(!a.listExists());
    }

    void recordWithoutTitleWritesNothingAndStays()
    {
        AddingAudio a(m_country);
        a.server.reply("cddb read",
                       "210 country 12025d03 CD database entry follows (until terminating `.')\r\n"
                       "DISCID=12025d03\r\nDTITLE=\r\nTTITLE0=A\r\nTTITLE1=B\r\nTTITLE2=C\r\n.\r\n");
        bool stayed = false;
        QVERIFY(!a.add([](QDialog& d) { tick(d, "chQuery0"); },
                       [&](QDialog& d) {
                           // Once the message is out, the dialog is back; it stays until closed.
                           QTimer poll;
                           QObject::connect(&poll, &QTimer::timeout, &d, [&] {
                               if (!a.app.prompter.texts().isEmpty() && d.isVisible()) {
                                   stayed = true;
                                   d.reject();
                               }
                           });
                           poll.start(20);
                           return d.exec();
                       }));
        QCOMPARE(
            a.app.prompter.texts(),
            QStringList{"Ошибка сервера CDDB.\r\rНе получено название диска! Повторите попытку позже или "
                        "обратитесь к другому серверу."});
        QVERIFY(stayed);
        QCOMPARE(a.rows(), 0);
    }

    void captionCountsAndClosingStopsTheQuery()
    {
        AddingAudio a(m_country);
        a.server.silence("cddb query");
        QString captionDuringQuery;
        QElapsedTimer clock;
        QVERIFY(!a.add([](QDialog& d) { tick(d, "chQuery0"); },
                       [&](QDialog& d) {
                           QTimer::singleShot(2300, &d, [&] {
                               captionDuringQuery = d.windowTitle();
                               clock.start();
                               QTest::keyClick(&d, Qt::Key_Escape);
                           });
                           return d.exec();
                       }));
        QCOMPARE(captionDuringQuery, kCaption + "0:02");
        QVERIFY2(clock.elapsed() < 2000, "closing the dialog ends the wait at once");
        QCOMPARE(a.rows(), 0);
        QVERIFY(!a.listExists());
    }

    void cdPlayerIniBecomesANewDisc()
    {
        AddingAudio a(m_country);
        test::writeFile(
            cdPlayerIni(a.app.ctx).path(),
            cp1251::encode(QString("[" + a.discId +
                                   "]\r\nEntryType=1\r\nartist=Кино\r\ntitle=Группа крови\r\n"
                                   "numtracks=3\r\n0=Группа крови\r\n2=Закрой за мной дверь\r\n")));
        QVERIFY(a.add([](QDialog& d) { tick(d, "chQuery1"); }, {}));
        QCOMPARE(
            a.row("Название || '|' || Альбом || '|' || s.Стиль || '|' || Записей1 || '|' || Время1 || '|' || "
                  "Время2 || '|' || ДискID1 || '|' || ДискID1_d"),
            "Кино|Группа крови||3|10:56|00:00|" + a.discId + '|' + a.discId);
        QCOMPARE(a.tracks(), QStringList({"Группа крови", "- нет -", "Закрой за мной дверь"}));
        QVERIFY(a.server.received.isEmpty());
    }

    void discUnknownToCdPlayerIni()
    {
        AddingAudio a(m_country);
        test::writeFile(cdPlayerIni(a.app.ctx).path(), "[OTHER]\r\nartist=x\r\n");
        frmAddCD* dialog = nullptr;
        a.app.prompter.handleModal([&](QDialog& d) {
            d.show();
            tick(d, "chQuery1");
            d.findChild<QPushButton*>("imgButton0")->click();
            dialog = static_cast<frmAddCD*>(&d);
            return d.isVisible() ? int(QDialog::Rejected) : d.result();
        });
        QVERIFY(!runAddDisc(a.app.ctx, Category::Audio, nullptr));
        QVERIFY(dialog != nullptr);
        QCOMPARE(a.app.prompter.texts().last(), "Информация о этом диске отсутствует в файле cdplayer.ini!");
        QCOMPARE(a.rows(), 0);
        QVERIFY(!a.listExists());
    }

    void audioDiscGoneBeforeOk()
    {
        const QString cue = m_discs.audioCue("gone", {11993, 19539, 13880});
        AddingAudio a(cue);
        a.app.prompter.handleModal([&](QDialog& d) {
            d.show();
            tick(d, "chQuery0");
            QFile::remove(cue);
            d.findChild<QPushButton*>("imgButton0")->click();
            return int(QDialog::Rejected);
        });
        QVERIFY(!runAddDisc(a.app.ctx, Category::Audio, nullptr));
        QCOMPARE(a.app.prompter.texts().value(0),
                 "Вставьте Аудио диск в устройство для чтения компакт-дисков и повторите операцию.");
        QCOMPARE(a.rows(), 0);
    }

    void sourcesFollowTheDiscAndEachOther()
    {
        AddingAudio a(m_country);
        frmAddCD add(a.app.ctx, Category::Audio);
        add.show();
        auto* server = add.findChild<QCheckBox*>("chQuery0");
        auto* ini = add.findChild<QCheckBox*>("chQuery1");
        auto* save = add.findChild<QCheckBox*>("chTrackSave");
        auto* servers = add.findChild<QComboBox*>("cmbServer");
        QVERIFY(server->isEnabled() && ini->isEnabled() && !servers->isEnabled() && !save->isEnabled());
        server->click();
        QVERIFY(servers->isEnabled() && save->isEnabled());
        QCOMPARE(servers->count(), 7);
        ini->click();
        QVERIFY(!server->isChecked() && !save->isEnabled());
        ini->click();
        server->click();
        server->click();
        QVERIFY(!servers->isEnabled() && !save->isEnabled());

        // A computer disc's dialog has no audio sources at all.
        frmAddCD computer(a.app.ctx, Category::Computer);
        computer.show();
        QVERIFY(!computer.findChild<QCheckBox*>("chQuery0")->isVisible());
    }

private:
    QTemporaryDir m_folder;
    test::DiscFixtures m_discs{m_folder.path()};
    QString m_country;
};

VINORA_TEST_MAIN(tst_audiosources)
#include "tst_audiosources.moc"
