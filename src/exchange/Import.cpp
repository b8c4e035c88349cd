#include "exchange/Import.h"

#include "frame/AppContext.h"
#include "frame/TextRules.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/InfoStamp.h"
#include "store/Schema.h"
#include "store/SqlFunctions.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QMultiHash>
#include <QSqlQuery>
#include <QSqlRecord>
#include <optional>
#include <sqlite3.h>

namespace vinora {
namespace {

// Discs are committed together at most this often (a commit costs a flush to the disc).
constexpr qint64 kCommitEveryMs = 250;

// How the catalogues differ in an import.
struct StepDef
{
    Category category;
    const char* stage;
    QStringList copied; // fields taken as they are
    QString dictionary; // the dictionary table, whose name field has the same name
    QString dictionaryKey;
    std::optional<ContentsKind> lists;
};

QStringList names(std::initializer_list<const char*> list)
{
    QStringList out;
    for (const char* name : list) {
        out.append(QString::fromUtf8(name));
    }
    return out;
}

const StepDef& stepDef(Category category)
{
    static const StepDef audio{Category::Audio,
                               "Импортирование Аудио дисков...",
                               names({"Название", "Альбом", "Год", "Дисков", "Записей1", "Записей2",
                                      "Записей3", "Записей4", "Время1", "Время2", "Время3", "Время4"}),
                               QStringLiteral("Стиль"),
                               QStringLiteral("КодСтиля"),
                               ContentsKind::Tracks};
    static const StepDef computer{Category::Computer,
                                  "Импортирование Компьютерных дисков...",
                                  names({"Название", "РасОписание", "Год", "Дисков"}),
                                  QStringLiteral("Описание"),
                                  QStringLiteral("КодОписания"),
                                  ContentsKind::Files};
    static const StepDef dvd{Category::Dvd,
                             "Импортирование DVD дисков...",
                             names({"Название", "Описание", "Год", "Дисков", "Время", "Зона", "ФорматЗвука"}),
                             QStringLiteral("Жанр"),
                             QStringLiteral("КодЖанр"),
                             std::nullopt};
    return category == Category::Audio ? audio : category == Category::Computer ? computer : dvd;
}

// The schemas the import's connection sees: our main database is "main".
const QString kSource = QStringLiteral("src");
QString listSchema(ContentsKind kind)
{
    return kind == ContentsKind::Files ? QStringLiteral("files") : QStringLiteral("tracks");
}
QString sourceListSchema(ContentsKind kind)
{
    return u's' + listSchema(kind);
}

QString in(const QString& schema, const QString& table)
{
    return quoted(schema) + u'.' + quoted(table);
}

QString textOf(const QVariant& value)
{
    return value.isNull() ? QString() : value.toString();
}

// The titles (and albums) of a catalogue for the double test. A test reads the few rows
// whose folded text is the same and compares them as the catalogue compares text, instead
// of reading the whole table for each of thousands of discs.
class DoubleIndex
{
public:
    void add(const QString& title, const QString& album) { m_rows.insert(key(title, album), {title, album}); }

    bool contains(const QString& title, const QString& album) const
    {
        for (auto it = m_rows.constFind(key(title, album));
             it != m_rows.cend() && it.key() == key(title, album); ++it) {
            if (compareText(it->first, title) == 0 && compareText(it->second, album) == 0) {
                return true;
            }
        }
        return false;
    }

private:
    // Case, width and compatibility forms fold away; so do invisible format characters,
    // which the comparison ignores too.
    static QString fold(const QString& text)
    {
        QString visible;
        visible.reserve(text.size());
        for (const QChar ch : text) {
            if (ch.category() != QChar::Other_Format && ch.category() != QChar::Other_Control) {
                visible.append(ch);
            }
        }
        return visible.normalized(QString::NormalizationForm_KC)
            .toCaseFolded()
            .normalized(QString::NormalizationForm_KC);
    }
    static QString key(const QString& title, const QString& album)
    {
        return fold(title) + QChar(0) + fold(album);
    }

    QMultiHash<QString, std::pair<QString, QString>> m_rows;
};

// One import on one connection: our main database, the other copy's databases attached
// read-only, and our list databases attached, so that a disc's row and its lists are
// written in one transaction.
class ImportRun
{
public:
    ImportRun(const AppContext& ctx, const ImportSources& sources, const ImportChoice& choice,
              const ImportStage& stage)
        : m_ctx(ctx), m_sources(sources), m_choice(choice), m_stage(stage), m_db(ctx.MainDBPath)
    {
        m_db.attach(sources.main, kSource, Db::Access::ReadOnly);
        if (copiesLists(ContentsKind::Tracks)) {
            m_db.attach(ctx.TracksDBPath, listSchema(ContentsKind::Tracks), Db::Access::ReadWrite);
            m_db.attach(sources.tracks, sourceListSchema(ContentsKind::Tracks), Db::Access::ReadOnly);
        }
        if (copiesLists(ContentsKind::Files)) {
            m_db.attach(ctx.FilesDBPath, listSchema(ContentsKind::Files), Db::Access::ReadWrite);
            m_db.attach(sources.files, sourceListSchema(ContentsKind::Files), Db::Access::ReadOnly);
        }
    }

    ImportCounts run()
    {
        try {
            begin();
            for (const Category category : allCategories()) {
                if (m_choice.catalogue(category)) {
                    step(stepDef(category));
                }
            }
            commit();
        } catch (const AppError& error) {
            rollBack();
            throw ImportFailure{error, m_committed};
        }
        return m_committed;
    }

private:
    bool copiesLists(ContentsKind kind) const
    {
        if (m_sources.exported) {
            return false;
        }
        return kind == ContentsKind::Tracks ? m_choice.audio && m_choice.tracks
                                            : m_choice.computer && m_choice.files;
    }

    void begin()
    {
        m_db.exec(QStringLiteral("BEGIN IMMEDIATE"));
        m_inTransaction = true;
        m_sinceCommit.start();
    }

    void commit()
    {
        m_db.exec(QStringLiteral("COMMIT"));
        m_inTransaction = false;
        m_committed = m_counts;
    }

    void rollBack()
    {
        if (m_inTransaction) {
            QSqlQuery(QStringLiteral("ROLLBACK"), m_db.connection());
            m_inTransaction = false;
        }
    }

    // After a failed disc: the disc goes, the whole discs before it stay. A full disk or a
    // failed write may have made the engine roll the whole transaction back already; then
    // the discs since the last commit are gone with it, and so are their counts.
    void keepWholeDiscs()
    {
        if (sqlite3_get_autocommit(sqliteHandle(m_db.connection())) != 0) {
            m_inTransaction = false;
            m_counts = m_committed;
            return;
        }
        QSqlQuery(QStringLiteral("ROLLBACK TO disc"), m_db.connection());
        QSqlQuery(QStringLiteral("RELEASE disc"), m_db.connection());
        try {
            commit();
        } catch (const AppError&) {
            rollBack(); // the error of the disc is the one to tell
        }
    }

    // The discs of the last moment go in together.
    void commitNowAndThen()
    {
        if (m_sinceCommit.elapsed() >= kCommitEveryMs) {
            commit();
            begin();
        }
    }

    QStringList sourceColumns(const QString& table) const
    {
        return m_db.texts(QStringLiteral("SELECT name FROM pragma_table_info(?, ?)"), {table, kSource});
    }

    void step(const StepDef& def)
    {
        const CategoryInfo& info = categoryInfo(def.category);
        const QStringList available = sourceColumns(info.table);
        const auto has = [&](const QString& field) { return available.contains(field); };

        // The disc ids whose lists come along: 1 to 4, and 5 and 6 of an audio disc when the
        // source has the columns of the later databases.
        QStringList idFields;
        if (def.lists && copiesLists(*def.lists)) {
            const int idCount = def.category == Category::Audio && available.size() + 2 > 24 ? 6 : 4;
            for (int k = 1; k <= idCount; ++k) {
                idFields.append(QStringLiteral("ДискID%1").arg(k));
            }
        }
        QStringList selected;
        QStringList targetFields{QStringLiteral("Номер")};
        for (const QString& field : def.copied + QStringList{QStringLiteral("ДатаИзменения")} + idFields) {
            selected.append(has(field) ? u"t." + quoted(field) : QStringLiteral("NULL"));
        }
        targetFields += def.copied;
        targetFields += {def.dictionaryKey, QStringLiteral("ДатаИзменения")};
        targetFields += idFields;

        // A disc without its dictionary row drops out, as in the joined reading it always did.
        QList<QVariantList> rows;
        {
            QSqlQuery source = m_db.query(
                QStringLiteral("SELECT ") + selected.join(QStringLiteral(", ")) + QStringLiteral(", d.") +
                quoted(def.dictionary) + QStringLiteral(" FROM ") + in(kSource, info.table) +
                QStringLiteral(" t JOIN ") + in(kSource, def.dictionary) + QStringLiteral(" d ON t.") +
                quoted(def.dictionaryKey) + QStringLiteral(" = d.") + quoted(def.dictionaryKey) +
                QStringLiteral(" ORDER BY t.\"Номер\", t.") + quoted(info.keyField));
            while (source.next()) {
                QVariantList row;
                for (int i = 0; i <= selected.size(); ++i) {
                    row.append(source.value(i));
                }
                rows.append(row);
            }
        }

        const int last = m_db.scalar(QStringLiteral("SELECT max(\"Номер\") FROM ") +
                                     in(QStringLiteral("main"), info.table))
                             .toInt();
        DoubleIndex doubles;
        if (m_choice.skipDoubles) {
            QSqlQuery existing = m_db.query(
                QStringLiteral("SELECT \"Название\", ") +
                (def.category == Category::Audio ? QStringLiteral("\"Альбом\"") : QStringLiteral("NULL")) +
                QStringLiteral(" FROM ") + in(QStringLiteral("main"), info.table));
            while (existing.next()) {
                doubles.add(textOf(existing.value(0)), textOf(existing.value(1)));
            }
        }

        QStringList marks;
        marks.fill(QStringLiteral("?"), targetFields.size());
        Statement insert(
            m_db, QStringLiteral("INSERT INTO ") + in(QStringLiteral("main"), info.table) + u'(' +
                      [&] {
                          QStringList quotedFields;
                          for (const QString& field : targetFields) {
                              quotedFields.append(quoted(field));
                          }
                          return quotedFields.join(QStringLiteral(", "));
                      }() +
                      QStringLiteral(") VALUES (") + marks.join(QStringLiteral(", ")) + u')');

        if (m_stage) {
            m_stage(QString::fromUtf8(def.stage));
        }
        const int copiedCount = static_cast<int>(def.copied.size());
        const int albumAt = static_cast<int>(def.copied.indexOf(QStringLiteral("Альбом")));
        for (const QVariantList& row : rows) {
            const QString title = textOf(row.at(0));
            const QString album = albumAt >= 0 ? textOf(row.at(albumAt)) : QString();
            if (m_choice.skipDoubles && doubles.contains(title, album)) {
                ++m_counts.skippedOf(def.category);
                continue;
            }
            const ImportCounts before = m_counts;
            m_db.exec(QStringLiteral("SAVEPOINT disc"));
            try {
                QVariantList values{last + m_counts.importedOf(def.category) + 1};
                values += row.mid(0, copiedCount);
                values.append(dictionaryCode(def, row.last()));
                values.append(row.at(copiedCount)); // ДатаИзменения
                for (qsizetype k = 0; k < idFields.size(); ++k) {
                    values.append(copiedList(*def.lists, row.at(copiedCount + 1 + k)));
                }
                insert.run(values);
                m_db.exec(QStringLiteral("RELEASE disc"));
            } catch (const AppError&) {
                m_counts = before; // what the disc had counted goes with it
                keepWholeDiscs();
                throw;
            }
            ++m_counts.importedOf(def.category);
            if (m_choice.skipDoubles) {
                doubles.add(title, album);
            }
            commitNowAndThen();
        }
        StampCatalogueUpdate(m_db, def.category, m_ctx.clock().today());
    }

    // The code of the dictionary value named `text` in our database; a name we lack is added.
    // A missing name is the empty one, the value for nothing chosen.
    QVariant dictionaryCode(const StepDef& def, const QVariant& text)
    {
        const QString name = textOf(text);
        const QString table = in(QStringLiteral("main"), def.dictionary);
        const QVariant code = m_db.scalar(QStringLiteral("SELECT ") + quoted(def.dictionaryKey) +
                                              QStringLiteral(" FROM ") + table + QStringLiteral(" WHERE ") +
                                              quoted(def.dictionary) + QStringLiteral(" = ? ORDER BY ") +
                                              quoted(def.dictionaryKey) + QStringLiteral(" LIMIT 1"),
                                          {name});
        if (code.isValid()) {
            return code;
        }
        m_db.exec(QStringLiteral("INSERT INTO ") + table + u'(' + quoted(def.dictionary) +
                      QStringLiteral(") VALUES (?)"),
                  {name});
        return m_db.scalar(QStringLiteral("SELECT last_insert_rowid()"));
    }

    // Copies the list `id` of the other copy into a new list of ours and gives the id to
    // store, or Null when the list could not be made (ours has one of that id) or filled
    // (theirs is missing or unreadable; the new list stays, empty).
    QVariant copiedList(ContentsKind kind, const QVariant& idValue)
    {
        if (idValue.isNull()) {
            return {};
        }
        const QString id = idValue.toString();
        const bool copied = copyList(kind, id);
        int& ok = kind == ContentsKind::Tracks ? m_counts.tracksCopied : m_counts.filesCopied;
        int& failed = kind == ContentsKind::Tracks ? m_counts.tracksFailed : m_counts.filesFailed;
        if (copied) {
            ++ok;
            return id;
        }
        if (!id.isEmpty()) {
            ++failed;
        }
        return {};
    }

    bool copyList(ContentsKind kind, const QString& id)
    {
        const ContentsDescriptor& descriptor = contentsDescriptor(kind);
        const QString registry = in(listSchema(kind), QStringLiteral("Списки"));
        try {
            if (m_db.scalar(QStringLiteral("SELECT count(*) FROM ") + registry +
                                QStringLiteral(" WHERE \"ДискID\" = ?"),
                            {id})
                    .toInt() > 0) {
                return false;
            }
            m_db.exec(QStringLiteral("INSERT INTO ") + registry + QStringLiteral(" (\"ДискID\") VALUES (?)"),
                      {id});
        } catch (const AppError& error) {
            throwIfOurs(error);
            return false; // an id no list can have
        }
        try {
            const QString sourceSchema = sourceListSchema(kind);
            if (m_db.scalar(QStringLiteral("SELECT count(*) FROM ") +
                                in(sourceSchema, QStringLiteral("Списки")) +
                                QStringLiteral(" WHERE \"ДискID\" = ?"),
                            {id})
                    .toInt() == 0) {
                return false;
            }
            QStringList fields;
            for (const QString& field : descriptor.fields) {
                fields.append(quoted(field));
            }
            const QString columns = fields.join(QStringLiteral(", "));
            // One statement per list: the search index takes the rows in one piece.
            m_db.exec(QStringLiteral("INSERT INTO ") + in(listSchema(kind), descriptor.rowsTable) +
                          QStringLiteral(" (\"ДискID\", ") + columns + QStringLiteral(") SELECT ?, ") +
                          columns + QStringLiteral(" FROM ") + in(sourceSchema, descriptor.rowsTable) +
                          QStringLiteral(" WHERE \"ДискID\" = ? ORDER BY rowid"),
                      {id, id});
            return true;
        } catch (const AppError& error) {
            throwIfOurs(error);
            return false;
        }
    }

    // Errors of our own databases (a full disk, a file that cannot be written) stop the
    // import; those of the other copy's lists only fail the list.
    static void throwIfOurs(const AppError& error)
    {
        if (error.number() == err::DiskFull || error.number() == err::CannotOpenFile) {
            throw error;
        }
    }

    const AppContext& m_ctx;
    const ImportSources& m_sources;
    const ImportChoice& m_choice;
    const ImportStage& m_stage;
    Db m_db;
    bool m_inTransaction = false;
    QElapsedTimer m_sinceCommit;
    ImportCounts m_counts;
    ImportCounts m_committed;
};

bool isExport(const QString& path)
{
    try {
        const Db db(path, Db::Access::ReadOnly);
        return db.tableExists(QStringLiteral("Аудио")) &&
               db.scalar(
                     QStringLiteral("SELECT count(*) FROM pragma_table_info('Аудио') WHERE name = 'ДискID1'"))
                       .toInt() == 0;
    } catch (const AppError&) {
        return false;
    }
}

QString line(const char* label, int done, int of)
{
    return QString::fromUtf8(label) + QString::number(done) + QStringLiteral(" из ") + QString::number(of);
}

QStringList countLines(const ImportChoice& choice, const ImportCounts& counts)
{
    QStringList lines;
    const char* labels[] = {"- Аудио дисков: ", "- Компьютерных дисков: ", "- DVD дисков: "};
    for (const Category category : allCategories()) {
        const auto i = static_cast<std::size_t>(category);
        if (choice.catalogue(category)) {
            lines.append(line(labels[i], counts.imported[i], counts.imported[i] + counts.skipped[i]));
        }
    }
    if (choice.tracks) {
        lines +=
            {QString(), line("- треков: ", counts.tracksCopied, counts.tracksCopied + counts.tracksFailed)};
    }
    if (choice.files) {
        lines.append(line("- списков файлов: ", counts.filesCopied, counts.filesCopied + counts.filesFailed));
    }
    return lines;
}

} // namespace

bool ImportChoice::catalogue(Category category) const
{
    return category == Category::Audio ? audio : category == Category::Computer ? computer : dvd;
}

ImportSources importSources(const QString& folder, const ImportChoice& choice)
{
    const QString base = folder.endsWith(u'/') ? folder : folder + u'/';
    ImportSources sources;
    sources.main = base + QStringLiteral("vinora.db");
    if (!QFileInfo::exists(sources.main)) {
        const QFileInfoList databases =
            QDir(folder).entryInfoList({QStringLiteral("*.db")}, QDir::Files | QDir::Hidden, QDir::Name);
        if (databases.size() == 1 && isExport(databases.first().filePath())) {
            sources.main = databases.first().filePath();
            sources.exported = true;
            return sources;
        }
    } else if (isExport(sources.main)) {
        sources.exported = true;
        return sources;
    }
    if (choice.computer && choice.files) {
        sources.files = base + QStringLiteral("vinora_files.db");
    }
    if (choice.audio && choice.tracks) {
        sources.tracks = base + QStringLiteral("vinora_tracks.db");
    }
    return sources;
}

QString sourceCheckText(const AppContext& ctx, const ImportSources& sources, const ImportChoice& choice)
{
    if (!QFileInfo(sources.main).isFile()) {
        return QStringLiteral("В указанном каталоге база данных vinora не найдена!");
    }
    // Our own database would be read and written at once.
    if (QFileInfo(sources.main).canonicalFilePath() == QFileInfo(ctx.MainDBPath).canonicalFilePath()) {
        return QStringLiteral(
            "В указанном каталоге находится открытая база данных vinora. Импорт из нее невозможен.");
    }
    if (sources.exported) {
        return {};
    }
    if (choice.audio && choice.tracks && !QFileInfo(sources.tracks).isFile()) {
        return QStringLiteral("В указанном каталоге база данных vinora со списком треков не найдена!");
    }
    if (choice.computer && choice.files && !QFileInfo(sources.files).isFile()) {
        return QStringLiteral("В указанном каталоге база данных vinora со списком файлов не найдена!");
    }
    return {};
}

ImportCounts importCatalogues(const AppContext& ctx, const ImportSources& sources, const ImportChoice& choice,
                              const ImportStage& stage)
{
    std::optional<ImportRun> run;
    try {
        run.emplace(ctx, sources, choice, stage);
    } catch (const AppError& error) {
        throw ImportFailure{error, {}};
    }
    return run->run();
}

QString importSummary(const ImportChoice& choice, const ImportCounts& counts)
{
    QStringList lines{QStringLiteral("Операция успешно завершена!"), QString(),
                      QStringLiteral("Импортировано:"), QString()};
    lines += countLines(choice, counts);
    return lines.join(u'\n');
}

QString importFailureText(const ImportChoice& choice, const ImportFailure& failure)
{
    QString text = QStringLiteral("ОШИБКА!\n\n");
    text += failure.error.number() == err::DiskFull
                ? QStringLiteral("Недостаточно места на диске для базы данных.")
                : QStringLiteral(
                      "База данных имеет атрибут 'только чтение', повреждена или имеет не верный формат.");
    QStringList lines{text, QString(), QStringLiteral("Импортировано до ошибки:"), QString()};
    lines += countLines(choice, failure.counts);
    return lines.join(u'\n');
}

} // namespace vinora
