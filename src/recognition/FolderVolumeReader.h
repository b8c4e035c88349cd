#pragma once

#include "recognition/VolumeReader.h"

namespace vinora {

// A disc as a mounted folder: names starting with a dot are the hidden ones.
class FolderVolumeReader final : public VolumeReader
{
public:
    explicit FolderVolumeReader(QString root) : m_root(std::move(root)) {}

    std::optional<QList<VolumeEntry>> list(const QString& folder) override;
    std::optional<QByteArray> tail(const QString& file, int count) override;
    QString source() const override { return m_root; }

private:
    QString m_root;
};

} // namespace vinora
