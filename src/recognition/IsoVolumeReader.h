#pragma once

#include "recognition/Medium.h"
#include "recognition/VolumeReader.h"

#include <QHash>

namespace vinora {

// Reads the directories of an ISO 9660 volume sector by sector: Joliet names when the disc
// has them (as the desktop system showed them), else Rock Ridge names, else the plain
// ISO names without their version numbers. The hidden flag and multi-extent files are kept.
class IsoVolumeReader final : public VolumeReader
{
public:
    static std::unique_ptr<VolumeReader> open(std::unique_ptr<Medium> medium);

    std::optional<QList<VolumeEntry>> list(const QString& folder) override;
    std::optional<QByteArray> tail(const QString& file, int count) override;
    bool copy(const QString& file, QIODevice& out, const std::function<bool()>& cancelled) override;
    QString source() const override { return m_medium->path(); }

    // One extent of a file: its first sector and its length in bytes.
    struct Extent
    {
        quint32 lsn = 0;
        quint64 size = 0;
    };

    struct Record
    {
        QString name;
        quint32 extent = 0;
        quint64 size = 0; // of all extents together
        bool folder = false;
        bool hidden = false;
        QList<Extent> extents; // every extent of a file of several, in order; empty for one
    };

    // What a record's system use area and its continuation areas say: its Rock Ridge name
    // ("NM"), whether it was moved elsewhere ("RE"), and where a moved folder stands ("CL").
    struct RockRidge
    {
        QByteArray name;
        bool hasName = false;
        bool relocated = false;
        std::optional<quint32> childLink;
    };

private:
    IsoVolumeReader(std::unique_ptr<Medium> medium, Record root, bool joliet, bool highSierra);
    std::optional<QList<Record>> readDirectory(const Record& directory);
    std::optional<QList<Record>> listing(const QString& folder, Record directory);
    std::optional<QList<Record>> folderRecords(const QString& folder);
    std::optional<Record> find(const QString& path);
    RockRidge rockRidgeOf(const unsigned char* record, int nameLength, int recordLength);
    QByteArray continuationArea(quint32 lsn, quint32 offset, quint32 length);
    bool readCached(qint32 lsn, Sector& out);
    bool readBytes(const Record& file, quint64 from, quint64 count,
                   const std::function<bool(const char*, qint64)>& sink);

    std::unique_ptr<Medium> m_medium;
    Record m_root;
    bool m_joliet;
    bool m_highSierra;
    // Bytes before the first entry of every system use area but the root's own (the "SP" entry).
    int m_suspSkip = 0;
    QHash<QString, QList<Record>> m_cache;
    // Directory sectors the reader may still read: each sector of a sound disc is read once,
    // so a damaged one whose folders share or overlap their extents cannot make it read on.
    qint64 m_sectorsLeft;
    // The same for the sectors of continuation areas, which a sound disc packs together.
    qint64 m_continuationSectorsLeft;
    qint32 m_cachedLsn = -1;
    Sector m_cachedSector{};
};

} // namespace vinora
