#pragma once

// Names for the benchmarks' collections: a small random generator with its own arithmetic
// (the same collection on every machine and library), words drawn as words are used (a few
// often, most rarely), titles, file names and whole file trees of a disc.
#include "contents/FileListScan.h"

#include <QList>
#include <QString>
#include <cstdint>

namespace vinora::bench {

class Random
{
public:
    explicit Random(std::uint64_t start) : m_state(start) {}
    std::uint32_t next()
    {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 7;
        m_state ^= m_state << 17;
        return static_cast<std::uint32_t>(m_state >> 16);
    }
    int below(int bound) { return static_cast<int>(next() % static_cast<std::uint32_t>(bound)); }
    // Ranks drawn as words are used: the first few often, the long tail rarely.
    int zipf(int bound);

private:
    std::uint64_t m_state;
};

class NameMaker
{
public:
    explicit NameMaker(Random& random) : m_random(random) {}

    QString word();
    QString russianWord();
    QString englishWord();
    QString title(int maxWords);
    QString fileName();
    // The rows of a disc's file list: the root, folders down to six levels and files in
    // them, `rowCount` rows in all, in the order a scan stores them.
    QList<FileRow> fileTree(int rowCount);

private:
    Random& m_random;
};

} // namespace vinora::bench
