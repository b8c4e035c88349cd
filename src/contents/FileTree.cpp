#include "contents/FileTree.h"

#include <QLocale>
#include <array>
#include <cmath>

namespace vinora {

std::optional<QList<FileTreeNode>> BuildTree(const QStringList& sortedPaths)
{
    constexpr int kDeepest = 40;
    QList<FileTreeNode> nodes;
    QString previous;
    int base = 0;
    int parent = -1;
    std::array<int, kDeepest + 1> relative{};
    std::array<qsizetype, kDeepest + 1> length{};
    for (const QString& path : sortedPaths) {
        if (path == u"\\") {
            nodes.append({QStringLiteral("..."), -1, 2});
            base = parent = static_cast<int>(nodes.size()) - 1;
        } else {
            QString component;
            int level = 0;
            bool attached = false;
            for (qsizetype i = 1; i < path.size(); ++i) {
                if (path[i] != u'\\') {
                    component += path[i];
                    continue;
                }
                if (++level > kDeepest) {
                    return std::nullopt;
                }
                const QString before = i - component.size() < previous.size()
                                           ? previous.mid(i - component.size(), component.size())
                                           : QString();
                if (before == component && length[level] == component.size()) {
                    attached = true;
                    parent = relative[level] + base;
                } else {
                    length[level] = component.size();
                    if (attached) {
                        nodes.append({component, parent, 1});
                        parent = static_cast<int>(nodes.size()) - 1;
                        relative[level] = parent - base;
                    } else {
                        nodes.append({component, -1, 1});
                        base = parent = static_cast<int>(nodes.size()) - 1;
                        attached = true;
                        relative.fill(0);
                        relative[0] = 1;
                    }
                }
                component.clear();
            }
        }
        previous = path;
    }
    return nodes;
}

QString folderKey(const QList<FileTreeNode>& nodes, int node)
{
    QStringList texts;
    for (int at = node; at >= 0 && at < nodes.size(); at = nodes[at].parent) {
        texts.prepend(nodes[at].text);
    }
    const QString full = texts.join(u'\\');
    return full == u"..." ? QStringLiteral("\\") : u'\\' + full + u'\\';
}

int fileImage(const QString& name)
{
    static const std::array<std::pair<const char*, int>, 20> kinds = {{
        {".exe", 2},  {".zip", 3}, {".bmp", 4},  {".inf", 5},  {".ini", 5},   {".avi", 6},  {".mpg", 6},
        {".mpeg", 6}, {".mov", 6}, {".wav", 7},  {".mp3", 7},  {".mp2", 7},   {".rar", 8},  {".txt", 9},
        {".diz", 9},  {".nfo", 9}, {".gif", 10}, {".jpg", 11}, {".jpeg", 11}, {".htm", 12},
    }};
    const QString lower = name.toLower();
    for (const auto& [text, image] : kinds) {
        if (lower.contains(QLatin1StringView(text))) {
            return image;
        }
    }
    return lower.contains(QStringLiteral(".html")) ? 12 : 1;
}

double storedKilobytes(const QString& size, const QLocale& locale)
{
    // The sizes a scan writes ("4 096,0", "17", "0,5") are read here; any other text is read
    // by the locale, which then decides. Digit groups of three only, as the locale writes them.
    const QString group = locale.groupSeparator();
    const QString point = locale.decimalPoint();
    double whole = 0;
    double fraction = 0;
    double scale = 1;
    int digitsInGroup = 0;
    bool grouped = false;
    bool afterPoint = false;
    for (qsizetype i = 0; i < size.size(); ++i) {
        const QChar ch = size.at(i);
        if (ch >= u'0' && ch <= u'9') {
            if (afterPoint) {
                scale /= 10;
                fraction += (ch.unicode() - u'0') * scale;
            } else {
                whole = whole * 10 + (ch.unicode() - u'0');
                ++digitsInGroup;
            }
            continue;
        }
        const bool isGroup = !afterPoint && group.size() == 1 && ch == group.at(0) && digitsInGroup >= 1 &&
                             digitsInGroup <= 3 && (!grouped || digitsInGroup == 3);
        const bool isPoint = !afterPoint && point.size() == 1 && ch == point.at(0) && digitsInGroup > 0 &&
                             i + 1 < size.size() && (!grouped || digitsInGroup == 3);
        if (isGroup) {
            grouped = true;
            digitsInGroup = 0;
        } else if (isPoint) {
            afterPoint = true;
        } else {
            return locale.toDouble(size);
        }
    }
    if (size.isEmpty() || (grouped && !afterPoint && digitsInGroup != 3) || (afterPoint && scale == 1)) {
        return locale.toDouble(size);
    }
    return whole + fraction;
}

QString listVolumeText(const QStringList& sizes)
{
    if (sizes.isEmpty()) {
        return QStringLiteral("~0 Мб");
    }
    const QLocale locale;
    double sum = 0;
    for (const QString& size : sizes) {
        sum += storedKilobytes(size, locale);
    }
    const QString whole = QString::number(static_cast<qint64>(std::llround(sum)));
    QString text = QString::number(sum, 'f', sum == std::floor(sum) ? 0 : 1);
    text.replace(u'.', QLocale().decimalPoint());
    QString megabytes;
    switch (whole.size()) {
    case 6:
        megabytes = text.left(3);
        break;
    case 5:
        megabytes = text.left(2);
        break;
    case 4:
        megabytes = text.left(1);
        break;
    case 3:
    case 2:
    case 1:
        megabytes = QStringLiteral("1");
        break;
    default:
        megabytes = text;
    }
    return u'~' + megabytes + QStringLiteral(" Мб");
}

} // namespace vinora
