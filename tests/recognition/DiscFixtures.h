#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace vinora::test {

// Disc images made at test time by real tools, or written here (CUE/BIN).
class DiscFixtures
{
public:
    explicit DiscFixtures(QString folder);

    // A small tree with a root file, a nested folder and a Cyrillic name.
    QString sourceTree();
    // genisoimage with `options`, the tree as content.
    QString iso(const QString& name, const QStringList& options);
    // An image written by xorriso with Rock Ridge names only (no Joliet), holding `files`:
    // paths below the root ("folder/name") with their contents. Names may be as long as
    // Rock Ridge allows, longer than one directory record holds.
    QString rockRidgeIso(const QString& name, const QList<std::pair<QString, QByteArray>>& files);
    // Two sessions appended by xorriso: labels FIRST then SECOND.
    QString twoSessionIso(const QString& name);
    // An empty UDF file system made by mkudffs (revision "0x0201" unless given).
    QString udf(const QString& name, const QString& label,
                const QString& revision = QStringLiteral("0x0201"));
    // A CUE sheet and its BIN of silent audio tracks of the given lengths in sectors,
    // optionally followed by a data track holding the 2048-byte sectors of `dataImage`.
    QString audioCue(const QString& name, const QList<int>& trackSectors, const QString& dataImage = {});

    QString path(const QString& name) const;

private:
    QString m_folder;
};

// Runs a tool and returns its standard output; fails the test when it cannot run.
QByteArray runTool(const QString& program, const QStringList& arguments, int* exitCode = nullptr);

// The four-lane checksum written again, plainly, as the test's own oracle.
quint32 laneChecksum(const QByteArray& sector, bool reversed);
QByteArray sectorOf(const QString& image, qint64 lsn);

} // namespace vinora::test
