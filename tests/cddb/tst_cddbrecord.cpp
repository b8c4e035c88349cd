#include "cddb/CddbRecord.h"
#include "cddb/ReplyText.h"
#include "frame/AppError.h"
#include "frame/Cp1251.h"
#include "support/TestMain.h"

#include <QFile>

using namespace vinora;

namespace {

// A record as a server sends it: the 210 status line, the record, the closing ".".
QString served(const QString& category, const QByteArray& record)
{
    QByteArray reply = "210 " + category.toLatin1() + " 00000000 title\r\n" + record;
    if (!reply.endsWith('\n')) {
        reply += "\r\n";
    }
    return decodeReplyText(reply + ".\r\n");
}

QByteArray recordFile(const QString& name)
{
    QFile file(QStringLiteral(VINORA_TEST_DATA "/cddb/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class tst_cddbrecord : public QObject
{
    Q_OBJECT

private slots:
    void recordsDecode_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("artist");
        QTest::addColumn<QString>("album");
        QTest::addColumn<int>("tracks");
        QTest::addColumn<int>("revision");
        QTest::addColumn<int>("song");
        QTest::addColumn<QString>("name");
        QTest::newRow("continuation split in mid-word")
            << "classical_0a0f5811.xmcd" << "Maria Venuti" << "Maria Venuti Sings Schubert, Schoenberg, Schumann"
            << 17 << 0 << 3 << "4 Lieder Nach Texten V. Richard Dehmel Op. 2: Schenk Mir Deinen Goldenen Kamm";
        QTest::newRow("no slash in the title") << "country_12025d03.xmcd" << "Ernest Ray Everett - Single CD"
                                               << "Ernest Ray Everett - Single CD" << 3 << 0 << 1 << "I'm Your Puppet";
        QTest::newRow("category data") << "data_940aac0d.xmcd" << "Marina & The Diamonds" << "The Family Jewels" << 13
                                       << 3 << 13 << "Guilty";
        QTest::newRow("enhanced CD") << "folk_8309a80a.xmcd" << "Loreena McKennitt"
                                     << "Elemental (Limited Edition with Bonus DVD)" << 10 << 4 << 10
                                     << "Enhanced CD Data";
        QTest::newRow("UTF-8, trailing blanks kept") << "jazz_1c11c714.xmcd" << "Various" << "Jazz Manouche CD 1" << 20
                                                     << 0 << 1 << "Bireli Lagrène: New York City  ";
        QTest::newRow("UTF-8 continuation")
            << "jazz_1c11c714.xmcd" << "Various" << "Jazz Manouche CD 1" << 20 << 0 << 15
            << "Christian Escoudé, Dorado Schmitt, Babik Reinhardt: Où Es Tu Mon Amour";
        QTest::newRow("UTF-8 album") << "misc_0a0dd914.xmcd" << "Various" << "Années 60 CD1" << 20 << 2 << 20
                                     << "THE TREMOLOES / Suddenly You Love Me";
        QTest::newRow("synthetic continuations") << "misc_12345678.xmcd" << "DiscArtist" << "DiscTitle" << 16 << 1 << 3
                                                 << "TrackArtist3 cntd. / TrackTitle3";
        QTest::newRow("57 tracks") << "misc_2f0d8939.xmcd" << "Dan Levenson"
                                   << "Old Time Festival Tunes For Clawhammer Banjo (Disc 2)" << 57 << 0 << 57
                                   << "Yellow Rose of Texas";
        QTest::newRow("GB18030") << "misc_a70c310c.xmcd" << "周杰伦" << "十一月的萧邦" << 12 << 9 << 0 << "";
        QTest::newRow("last line without line end")
            << "reggae_d50dd30f.xmcd" << "Various" << "Ska Island" << 15 << 3 << 15 << "Keep On Running";
        QTest::newRow("Latin-1") << "rock_2b055c04.xmcd" << "Tuhonvarjo" << "Syvyyden Syli" << 4 << 0 << 3
                                 << "Joutsenen Siivillä";
        QTest::newRow("old year in EXTD") << "rock_6909aa09.xmcd" << "DIRE STRAITS" << "Dire Straits" << 9 << 7 << 9
                                          << "Lions";
    }

    void recordsDecode()
    {
        QFETCH(QString, file);
        QFETCH(QString, artist);
        QFETCH(QString, album);
        QFETCH(int, tracks);
        QFETCH(int, revision);
        QFETCH(int, song);
        QFETCH(QString, name);
        const QString category = file.section(u'_', 0, 0);
        CddbRecord record;
        const QString result = cddbDecodeEntry(served(category, recordFile(file)), record);
        QCOMPARE(record.category, category);
        QCOMPARE(record.artist, artist);
        QCOMPARE(record.cdTitle, album);
        QCOMPARE(record.tracks(), tracks);
        QCOMPARE(record.dataRev, revision);
        if (song > 0) {
            QCOMPARE(record.SongName(song), name);
        }
        QVERIFY(result.startsWith(record.title + "\r\n" + QString::number(tracks)));
    }

    void cp1251RecordReadsRight()
    {
        const QByteArray record = cp1251::encode(
            QStringLiteral("# xmcd\r\n# Revision: 2\r\nDTITLE=Дети / Ёлка во дворе\r\nTTITLE0=Песенка про ёжика\r\n"
                           "TTITLE1=Зимняя сказка\r\nEXTD=\r\nEXTT0=\r\nEXTT1=\r\nPLAYORDER=\r\n"));
        CddbRecord decoded;
        cddbDecodeEntry(served("folk", record), decoded);
        QCOMPARE(decoded.artist, "Дети");
        QCOMPARE(decoded.cdTitle, "Ёлка во дворе");
        QCOMPARE(decoded.SongName(1), "Песенка про ёжика");
        QCOMPARE(decoded.SongName(2), "Зимняя сказка");
    }

    void titleRules_data()
    {
        QTest::addColumn<QString>("lines");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("artist");
        QTest::addColumn<QString>("album");
        QTest::newRow("continued after the slash") << "DTITLE=A / B\r\nDTITLE= C\r\n" << "A / B C" << "A" << "B C";
        QTest::newRow("no slash") << "DTITLE=Only\r\n" << "Only" << "Only" << "Only";
        QTest::newRow("slash in the album") << "DTITLE=AC/DC / Back/Front\r\n" << "AC/DC / Back/Front" << "AC"
                                            << "DC / Back/Front";
        QTest::newRow("missing") << "" << "" << "" << "";
    }

    void titleRules()
    {
        QFETCH(QString, lines);
        QFETCH(QString, title);
        QFETCH(QString, artist);
        QFETCH(QString, album);
        CddbRecord record;
        cddbDecodeEntry("210 rock 0 x\r\n" + lines + ".\r\n", record);
        QCOMPARE(record.title, title);
        QCOMPARE(record.artist, artist);
        QCOMPARE(record.cdTitle, album);
        QCOMPARE(record.dataRev, 0); // no "# Revision:" line
    }

    void tenSongsAreNotOneAndTen()
    {
        QString reply = "210 rock 0 x\r\n";
        for (int i = 0; i <= 10; ++i) {
            reply += QStringLiteral("TTITLE%1=Song %2\r\n").arg(i).arg(i + 1);
        }
        CddbRecord record;
        cddbDecodeEntry(reply + ".\r\n", record);
        QCOMPARE(record.tracks(), 11);
        QCOMPARE(record.SongName(2), "Song 2");
        QCOMPARE(record.SongName(11), "Song 11");
        QCOMPARE(record.SongName(12), "");
    }

    void moreThanAHundredIsRefused()
    {
        QString reply = "210 rock 0 x\r\n";
        for (int i = 0; i <= kCddbMaxEntries; ++i) {
            reply += QStringLiteral("TTITLE%1=x\r\n").arg(i);
        }
        CddbRecord record;
        QVERIFY_THROWS_EXCEPTION(AppError, cddbDecodeEntry(reply, record));
    }

    void statusLines()
    {
        const CddbMatch match = QueryMatchDecode("200 rock 6909aa09 DIRE STRAITS / Dire Straits\r\n");
        QCOMPARE(match.category, "rock");
        QCOMPARE(match.discId, "6909aa09");
        QCOMPARE(match.title, "DIRE STRAITS / Dire Straits\r\n");
        const QList<CddbMatch> close = CloseMatchDecode(
            "211 close matches found\r\nreggae d50dd30f Various / Ska Island\r\nmisc d50dd30f Various / Ska Island\r\n.\r\n");
        QCOMPARE(close.size(), 2);
        QCOMPARE(close[1].category, "misc");
        QCOMPARE(close[1].title, "Various / Ska Island\r\n");
        CddbRecord record;
        QCOMPARE(cddbDecodeEntry("600 time-out", record), "600 Timeout");
    }

    void submission()
    {
        CddbDisc disc;
        disc.id = "0a105e12";
        disc.tracks = 2;
        disc.offsets = {150, 20000};
        disc.leadoutFrames = 40000;
        CddbRecord record;
        record.artist = "Кино";
        record.cdTitle = "Группа крови";
        record.songNames = {"Группа крови", "Закрой за мной дверь"};
        QCOMPARE(SubmitString(record, "vinora", "1.0", disc), "Error: Invalid DataRev number: 0");
        record.dataRev = 1;
        QCOMPARE(SubmitVerify(record, "", "1.0", 2), "Missing AppName");
        QCOMPARE(SubmitVerify(record, "vinora", "1.0", 3), "Missing song name on song: 3");
        const QString text = SubmitString(record, "vinora", "1.0", disc);
        QVERIFY(text.startsWith("# xmcd\r\n#\r\n# Track frame offsets:\r\n# 150\r\n# 20000\r\n#\r\n"
                                "# Disc length: 533 Seconds\r\n"));
        QVERIFY(text.contains("DISCID=0a105e12\r\nDTITLE=Кино / Группа крови\r\nTTITLE0=Группа крови\r\n"));
        QVERIFY(text.endsWith("EXTT1=\r\nPLAYORDER=\r\n"));
    }
};

VINORA_TEST_MAIN(tst_cddbrecord)
#include "tst_cddbrecord.moc"
