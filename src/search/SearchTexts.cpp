#include "search/SearchTexts.h"

#include <QRegularExpression>

namespace vinora {

QString numberCell(int number, int disc)
{
    const QString text = QString::number(number);
    return disc > 1 ? text + QStringLiteral(" (%1)").arg(disc) : text;
}

std::optional<DiscPlace> parseNumberCell(QStringView cell)
{
    static const QRegularExpression form(QStringLiteral("^(-?\\d{1,5})(?: \\(([1-6])\\))?$"));
    const QRegularExpressionMatch match = form.match(cell.toString());
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    const int disc = match.hasCaptured(2) ? match.capturedView(2).toInt() : 1;
    return DiscPlace{match.capturedView(1).toInt(), disc};
}

int compareNumberCells(QStringView a, QStringView b)
{
    const std::optional<DiscPlace> left = parseNumberCell(a);
    const std::optional<DiscPlace> right = parseNumberCell(b);
    if (!left || !right) {
        return int(!left) - int(!right);
    }
    if (left->number != right->number) {
        return left->number < right->number ? -1 : 1;
    }
    return left->disc - right->disc;
}

QString pathCell(const QString& path)
{
    return path == u"\\" ? QStringLiteral("...") : path;
}

QStringList resultColumns(const SearchRequest& request)
{
    if (request.tracks) {
        return {QStringLiteral("Название трека"), QStringLiteral("№")};
    }
    return {request.folders ? QStringLiteral("Имя папки") : QStringLiteral("Имя файла"), QStringLiteral("№"),
            QStringLiteral("Путь")};
}

QString searchPlaceWord(const SearchRequest& request)
{
    return request.tracks ? QStringLiteral("треках") : QStringLiteral("файлах");
}

QString resultLine(const SearchRequest& request, int found)
{
    if (found <= 0) {
        return QStringLiteral("Результат поиска:");
    }
    return (request.tracks ? QStringLiteral("Результат поиска (найдено треков: ")
                           : QStringLiteral("Результат поиска (найдено файлов: ")) +
           QString::number(found) + QStringLiteral("):");
}

QString nothingFoundMessage(const SearchRequest& request)
{
    if (request.tracks) {
        return QStringLiteral("Нет таких треков!");
    }
    return request.folders ? QStringLiteral("Нет таких папок!") : QStringLiteral("Нет таких файлов!");
}

} // namespace vinora
