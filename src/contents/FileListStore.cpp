#include "contents/FileListStore.h"

#include "contents/ContentsLinks.h"
#include "frame/AppContext.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Schema.h"
#include "store/SearchIndex.h"

#include <QRandomGenerator>
#include <QStringList>
#include <array>
#include <optional>

namespace vinora {

QString clashQuestionText()
{
    return QStringLiteral(
        "Серийный номер этого диска совпадает с уже существующим серийным номером!\r\rВозможные "
        "причины:\r\n   1. Этот диск уже есть в базе данных\r\n   2. Диск записан в режиме пакетно "
        "записи (UDF)\r\n   3. Диск имеет одинаковый идентификатор с ранее добавленным диском "
        "(пиратская копия)\r\n\r\nНе смотря на это, есть возможность произвести добавление списка "
        "файлов для этого диска. Продолжить?");
}

bool CheckFileTableOwner(const AppContext& ctx, const QString& id)
{
    return listHasOwner(ctx, ContentsKind::Files, id);
}

bool CreateFileTable(AppContext& ctx, QString& id, bool ask, const ClashQuestion& question)
{
    for (;;) {
        const ListCreation creation = createList(ctx, ContentsKind::Files, id, ask);
        if (creation != ListCreation::Owned) {
            return creation == ListCreation::Created;
        }
        if (!question(clashQuestionText())) {
            return false;
        }
        QRandomGenerator random(static_cast<quint32>(ctx.clock().now().toMSecsSinceEpoch()));
        id = QString::number(
            static_cast<qint64>(random.generateDouble() * 999999999 + random.generateDouble() * 9));
    }
}

void CreateLinkDiskID(AppContext& ctx, int number, int slot, const QString& id, bool share)
{
    const QVariant value = id.isEmpty() ? QVariant() : QVariant(id);
    QList<QPair<QString, QVariant>> fields{{QStringLiteral("ДискID%1").arg(slot), value}};
    if (share) {
        fields.append({QStringLiteral("ДискID%1_d").arg(slot), value});
    }
    writeDiscSlot(ctx, ContentsKind::Files, number, slot, fields);
}

void DeleteFileList(AppContext& ctx, int number, int slot, const QString& id)
{
    dropListIfAny(ctx, ContentsKind::Files, id);
    writeDiscSlot(ctx, ContentsKind::Files, number, slot,
                  {{QStringLiteral("ДискID%1").arg(slot), QVariant()}});
}

namespace {

// Rows wait in a table of the connection's own until their commit moves them into the
// list in one statement: the search index then takes them in one piece rather than row by
// row, which is several times faster.
const QString kStaged = QStringLiteral("temp.\"ФайлыНовые\"");
const QString kRowColumns = QStringLiteral("Имя, Путь, Размер, Комментарий");

// Writes `text` as UTF-8 at `out` and gives the end, or nothing when it holds a surrogate:
// such a text goes to the engine as it is, to be encoded the engine's own way.
std::optional<char*> plainUtf8(QStringView text, char* out)
{
    for (const QChar ch : text) {
        const char16_t c = ch.unicode();
        if (c < 0x80) {
            *out++ = static_cast<char>(c);
        } else if (c < 0x800) {
            *out++ = static_cast<char>(0xC0 | (c >> 6));
            *out++ = static_cast<char>(0x80 | (c & 0x3F));
        } else if (!QChar::isSurrogate(c)) {
            *out++ = static_cast<char>(0xE0 | (c >> 12));
            *out++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            *out++ = static_cast<char>(0x80 | (c & 0x3F));
        } else {
            return std::nullopt;
        }
    }
    return out;
}

} // namespace

// A row's texts bound as UTF-8 from one buffer: the engine stores them so and would
// otherwise convert each text in a memory block of its own.
void FileListWriter::bindRow(const FileRow& row)
{
    const std::array<QStringView, 4> texts{row.name, row.path, row.size, QStringView(row.comment).left(50)};
    qsizetype room = 0;
    for (const QStringView text : texts) {
        room += 3 * text.size();
    }
    if (m_utf8.size() < room) {
        m_utf8.resize(room);
    }
    char* out = m_utf8.data();
    for (int i = 0; i < 4; ++i) {
        const QStringView text = texts[std::size_t(i)];
        const std::optional<char*> end = text.isEmpty() ? std::nullopt : plainUtf8(text, out);
        if (text.isEmpty()) {
            m_insert->bindNull(i + 1);
        } else if (end) {
            m_insert->bindUtf8(i + 1, QByteArrayView(out, *end - out));
            out = *end;
        } else {
            m_insert->bindText(i + 1, text);
        }
    }
}

FileListWriter::FileListWriter(const Db& filesDb, QString id) : m_db(filesDb), m_id(std::move(id))
{
    m_db.exec(QStringLiteral("CREATE TEMP TABLE IF NOT EXISTS ") + kStaged + u'(' + kRowColumns + u')');
    m_db.exec(QStringLiteral("DELETE FROM ") + kStaged);
    m_insert = std::make_unique<Statement>(m_db, QStringLiteral("INSERT INTO ") + kStaged + u'(' +
                                                     kRowColumns + QStringLiteral(") VALUES (?, ?, ?, ?)"));
    m_sinceCommit.start();
}

FileListWriter::~FileListWriter()
{
    try {
        commit();
    } catch (const AppError&) {
        // The rows of the last moment are lost with the failure that stopped the scan.
    }
}

void FileListWriter::write(const QList<FileRow>& rows)
{
    if (!m_transaction) {
        m_transaction = std::make_unique<Transaction>(m_db);
    }
    for (const FileRow& row : rows) {
        bindRow(row);
        m_insert->run();
        ++m_count;
    }
    if (m_sinceCommit.elapsed() >= 250) {
        commit();
    }
}

void FileListWriter::commit()
{
    if (m_transaction) {
        insertIndexedRows(m_db, ContentsKind::Files,
                          QStringLiteral("INSERT INTO Файлы (ДискID, ") + kRowColumns +
                              QStringLiteral(") SELECT ?, ") + kRowColumns + QStringLiteral(" FROM ") +
                              kStaged + QStringLiteral(" ORDER BY rowid"),
                          {m_id.isEmpty() ? QVariant() : QVariant(m_id)});
        m_db.exec(QStringLiteral("DELETE FROM ") + kStaged);
        m_transaction->commit();
        m_transaction.reset();
    }
    m_sinceCommit.restart();
}

} // namespace vinora
