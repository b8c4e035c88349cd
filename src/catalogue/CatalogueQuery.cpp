#include "catalogue/CatalogueQuery.h"

#include "store/Schema.h"

namespace vinora {
namespace {

const QStringList kOperators = {QStringLiteral("<="), QStringLiteral(">="), QStringLiteral("<>"),
                                QStringLiteral("="),  QStringLiteral("<"),  QStringLiteral(">")};

// The column of `field` in the query, or empty for a field the catalogue does not have.
QString columnOf(const CatalogueKind& kind, const QString& field)
{
    if (field.compare(kind.dictionaryTable, Qt::CaseInsensitive) == 0) {
        return QStringLiteral("d.") + quoted(kind.dictionaryTable);
    }
    for (const QString& own : kind.fields()) {
        if (own.compare(field, Qt::CaseInsensitive) == 0) {
            return QStringLiteral("t.") + quoted(own);
        }
    }
    return {};
}

class FilterReader
{
public:
    explicit FilterReader(QString text) : m_text(std::move(text)) {}

    bool atEnd()
    {
        skipBlanks();
        return m_at >= m_text.size();
    }

    // A name, plain or in brackets, with "table.field" kept together.
    QString word()
    {
        skipBlanks();
        QString name;
        for (;;) {
            if (m_at < m_text.size() && m_text[m_at] == u'[') {
                const qsizetype close = m_text.indexOf(u']', m_at);
                if (close < 0) {
                    return {};
                }
                name += m_text.mid(m_at + 1, close - m_at - 1);
                m_at = close + 1;
            } else {
                while (m_at < m_text.size() && (m_text[m_at].isLetterOrNumber() || m_text[m_at] == u'_')) {
                    name += m_text[m_at++];
                }
            }
            if (m_at < m_text.size() && m_text[m_at] == u'.' && !name.isEmpty()) {
                name += m_text[m_at++];
                continue;
            }
            return name;
        }
    }

    QString op()
    {
        skipBlanks();
        for (const QString& candidate : kOperators) {
            if (QStringView(m_text).mid(m_at).startsWith(candidate)) {
                m_at += candidate.size();
                return candidate;
            }
        }
        const qsizetype start = m_at;
        const QString like = word();
        if (like.compare(QStringLiteral("LIKE"), Qt::CaseInsensitive) == 0) {
            return QStringLiteral("LIKE");
        }
        m_at = start;
        return {};
    }

    std::optional<QVariant> value()
    {
        skipBlanks();
        if (m_at >= m_text.size()) {
            return std::nullopt;
        }
        const QChar quote = m_text[m_at];
        if (quote == u'"' || quote == u'\'') {
            QString text;
            for (++m_at; m_at < m_text.size(); ++m_at) {
                if (m_text[m_at] == quote) {
                    if (m_at + 1 < m_text.size() && m_text[m_at + 1] == quote) {
                        text.append(quote); // a doubled quote stands for itself
                        ++m_at;
                        continue;
                    }
                    ++m_at;
                    return QVariant(text);
                }
                text.append(m_text[m_at]);
            }
            return std::nullopt; // no closing quote
        }
        const QString token = word();
        if (token.compare(QStringLiteral("True"), Qt::CaseInsensitive) == 0) {
            return QVariant(-1);
        }
        if (token.compare(QStringLiteral("False"), Qt::CaseInsensitive) == 0) {
            return QVariant(0);
        }
        bool isNumber = false;
        const double number = token.toDouble(&isNumber);
        if (!isNumber) {
            return std::nullopt;
        }
        return number == static_cast<qint64>(number) ? QVariant(static_cast<qint64>(number))
                                                     : QVariant(number);
    }

private:
    void skipBlanks()
    {
        while (m_at < m_text.size() && m_text[m_at].isSpace()) {
            ++m_at;
        }
    }

    QString m_text;
    qsizetype m_at = 0;
};

} // namespace

CatalogueFilter dictionaryFilter(const CatalogueKind& kind, const QString& name)
{
    return {{{QStringLiteral("AND"), kind.dictionaryTable, QStringLiteral("="), name}}};
}

CatalogueFilter likeFilter(const QString& field, const QString& text)
{
    return {{{QStringLiteral("AND"), field, QStringLiteral("LIKE"), QString(u'*' + text + u'*')}}};
}

std::optional<CatalogueFilter> parseFilter(const CatalogueKind& kind, const QString& text)
{
    CatalogueFilter filter;
    FilterReader reader(text);
    while (!reader.atEnd()) {
        Condition condition;
        condition.connector = reader.word().toUpper();
        if (condition.connector != u"AND" && !(condition.connector == u"OR" && !filter.isEmpty())) {
            return std::nullopt;
        }
        QString field = reader.word();
        // "Аудио.Название" names the catalogue's own field.
        if (const qsizetype dot = field.indexOf(u'.'); dot >= 0) {
            const QString table = field.left(dot);
            if (table.compare(kind.info().table, Qt::CaseInsensitive) != 0 &&
                table.compare(kind.dictionaryTable, Qt::CaseInsensitive) != 0) {
                return std::nullopt;
            }
            field = field.mid(dot + 1);
        }
        condition.field = field;
        condition.op = reader.op();
        const std::optional<QVariant> value = reader.value();
        if (columnOf(kind, condition.field).isEmpty() || condition.op.isEmpty() || !value) {
            return std::nullopt;
        }
        condition.value = *value;
        filter.conditions.append(condition);
    }
    return filter;
}

QString filterText(const CatalogueFilter& filter)
{
    QStringList parts;
    for (const Condition& condition : filter.conditions) {
        QString value = condition.value.toString();
        if (condition.value.typeId() == QMetaType::QString) {
            value = u'"' + value.replace(u'"', QStringLiteral("\"\"")) + u'"';
        }
        parts.append(condition.connector + u' ' + condition.field + u' ' + condition.op + u' ' + value);
    }
    return parts.join(u' ');
}

BuiltQuery buildCatalogueQuery(const CatalogueKind& kind, const CatalogueFilter& filter, int sortIndex,
                               bool descending)
{
    BuiltQuery query;
    const QString dictionary = quoted(kind.dictionaryTable);
    query.sql = QStringLiteral("SELECT t.*, d.") + dictionary + QStringLiteral(" AS ") + dictionary +
                QStringLiteral(" FROM ") + quoted(kind.info().table) + QStringLiteral(" t JOIN ") +
                dictionary + QStringLiteral(" d ON t.") + quoted(kind.dictionaryKey) +
                QStringLiteral(" = d.") + quoted(kind.dictionaryKey);
    QStringList parts;
    for (const Condition& condition : filter.conditions) {
        const QString column = columnOf(kind, condition.field);
        if (column.isEmpty()) {
            continue;
        }
        const QString test = column + u' ' + condition.op + QStringLiteral(" ?");
        parts.append(parts.isEmpty() ? test : condition.connector + u' ' + test);
        query.values.append(condition.value);
    }
    if (!parts.isEmpty()) {
        query.sql += QStringLiteral(" WHERE (") + parts.join(u' ') + u')';
    }
    const QString direction = descending ? QStringLiteral(" DESC") : QString();
    const QString number = QStringLiteral("t.") + quoted(QStringLiteral("Номер"));
    if (sortIndex <= 0 || sortIndex >= kind.sortItems.size()) {
        query.sql += QStringLiteral(" ORDER BY ") + number + direction;
    } else {
        query.sql += QStringLiteral(" ORDER BY ") + columnOf(kind, kind.sortItems[sortIndex].orderField) +
                     direction + QStringLiteral(", ") + number + direction;
    }
    // Rows of one number keep the order in which they were added.
    query.sql += QStringLiteral(", t.") + quoted(kind.info().keyField);
    return query;
}

} // namespace vinora
