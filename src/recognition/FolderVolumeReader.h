#pragma once

#include "recognition/VolumeReader.h"

namespace vinora {

// A disc as a mounted folder: names starting with a dot are the hidden ones. A symbolic
// link is listed as what it is, a file of its own size, and never followed: a folder path
// through a link is no folder of the disc.
class FolderVolumeReader final : public VolumeReader
{
public:
    explicit FolderVolumeReader(QString root) : m_root(std::move(root)) {}

    std::optional<QList<VolumeEntry>> list(const QString& folder) override;
    std::optional<QByteArray> tail(const QString& file, int count) override;
    bool copy(const QString& file, QIODevice& out, const std::function<bool()>& cancelled) override;
    QString source() const override { return m_root; }

private:
    QString m_root;
};

} // namespace vinora
