#include "store/JetPattern.h"

#include <QString>

namespace vinora {
namespace {

// Matches the set that starts after "[" at pattern[at]; returns the index after "]",
// or -1 for a "[" without a closing bracket (then "[" is a plain character).
qsizetype matchSet(QStringView pattern, qsizetype at, QChar ch, bool& matched)
{
    bool negate = false;
    if (at < pattern.size() && pattern[at] == u'!') {
        negate = true;
        ++at;
    }
    bool inSet = false;
    bool first = true;
    while (at < pattern.size() && (pattern[at] != u']' || first)) {
        const QChar from = pattern[at];
        if (at + 2 < pattern.size() && pattern[at + 1] == u'-' && pattern[at + 2] != u']') {
            const QChar to = pattern[at + 2];
            inSet = inSet || (ch >= from && ch <= to);
            at += 3;
        } else {
            inSet = inSet || ch == from;
            ++at;
        }
        first = false;
    }
    if (at >= pattern.size()) {
        return -1;
    }
    matched = inSet != negate;
    return at + 1;
}

} // namespace

bool jetLike(QStringView pattern, QStringView text)
{
    return jetLikeFolded(pattern.toString().toCaseFolded(), text);
}

bool jetLikeFolded(QStringView pattern, QStringView textView)
{
    const QString text = textView.toString().toCaseFolded();

    qsizetype p = 0;
    qsizetype t = 0;
    qsizetype starP = -1; // pattern position after the last "*"
    qsizetype starT = 0;  // text position that "*" is stretched to
    while (t < text.size()) {
        bool advanced = false;
        if (p < pattern.size()) {
            const QChar pc = pattern[p];
            if (pc == u'*') {
                starP = ++p;
                starT = t;
                continue;
            }
            if (pc == u'?') {
                advanced = true;
                ++p;
            } else if (pc == u'#') {
                advanced = text[t].isDigit();
                p += advanced ? 1 : 0;
            } else if (pc == u'[') {
                bool matched = false;
                const qsizetype next = matchSet(pattern, p + 1, text[t], matched);
                if (next < 0) {
                    advanced = text[t] == pc;
                    p += advanced ? 1 : 0;
                } else if (matched) {
                    advanced = true;
                    p = next;
                }
            } else if (pc == text[t]) {
                advanced = true;
                ++p;
            }
        }
        if (advanced) {
            ++t;
        } else if (starP >= 0) {
            p = starP;
            t = ++starT;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == u'*') {
        ++p;
    }
    return p == pattern.size();
}

} // namespace vinora
