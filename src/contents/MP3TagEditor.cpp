#include "contents/MP3TagEditor.h"

#include "frame/Cp1251.h"
#include "frame/TextRules.h"

namespace vinora {
namespace {

constexpr int kTagSize = 128;
constexpr int kFieldSize = 30;

QString cleaned(const QByteArray& field)
{
    const qsizetype zero = field.indexOf('\0');
    return CleanText(cp1251::decode(zero < 0 ? field : field.left(zero))).trimmed();
}

} // namespace

void MP3TagEditor::reset()
{
    m_hasTag = false;
    m_title = QByteArray(kFieldSize, ' ');
    m_artist = QByteArray(kFieldSize, ' ');
}

bool MP3TagEditor::read(qint64 fileLength, const QByteArray& tail)
{
    reset();
    if (fileLength <= kTagSize) {
        return true;
    }
    if (tail.size() < kTagSize) {
        return false;
    }
    const QByteArray tag = tail.right(kTagSize);
    if (tag.startsWith("TAG")) {
        m_hasTag = true;
        m_title = tag.mid(3, kFieldSize);
        m_artist = tag.mid(33, kFieldSize);
    }
    return true;
}

QString MP3TagEditor::title() const
{
    return cleaned(m_title);
}

QString MP3TagEditor::artist() const
{
    return cleaned(m_artist);
}

QString mp3Comment(const MP3TagEditor& tag)
{
    return QString(tag.artist() + QStringLiteral(" - ") + tag.title()).left(50);
}

} // namespace vinora
