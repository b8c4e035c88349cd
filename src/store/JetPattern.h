#pragma once

#include <QStringView>

namespace vinora {

// The catalogue's LIKE: "*" any run of characters, "?" one character, "#" one digit,
// "[abc]" / "[a-z]" / "[!abc]" one character of (or not of) a set. "%" and "_" are plain
// characters. Letters match without regard to case, Cyrillic and Latin alike.
bool jetLike(QStringView pattern, QStringView text);

// The same with the pattern already case folded (QString::toCaseFolded), for a pattern
// compared with many texts.
bool jetLikeFolded(QStringView foldedPattern, QStringView text);

} // namespace vinora
