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
    QString source() const override { return m_medium->path(); }

    struct Record
    {
        QString name;
        quint32 extent = 0;
        quint64 size = 0;
        bool folder = false;
        bool hidden = false;
    };

private:
    IsoVolumeReader(std::unique_ptr<Medium> medium, Record root, bool joliet, bool highSierra);
    std::optional<QList<Record>> readDirectory(const Record& directory);
    std::optional<QList<Record>> listing(const QString& folder, Record directory);
    std::optional<QList<Record>> folderRecords(const QString& folder);
    std::optional<Record> find(const QString& path);
    QString decodeName(const unsigned char* record, int nameLength, int recordLength, bool* skip) const;

    std::unique_ptr<Medium> m_medium;
    Record m_root;
    bool m_joliet;
    bool m_highSierra;
    QHash<QString, QList<Record>> m_cache;
    // Directory sectors the reader may still read: each sector of a sound disc is read once,
    // so a damaged one whose folders share or overlap their extents cannot make it read on.
    qint64 m_sectorsLeft;
};

} // namespace vinora
