#pragma once

#include "recognition/Medium.h"

#include <QFile>

namespace vinora {

// A plain image file of 2048-byte sectors (ISO 9660, UDF): one data track.
class ImageFileMedium final : public Medium
{
public:
    static std::unique_ptr<Medium> open(const QString& path);

    bool readSector(qint32 lsn, Sector& out) override;
    const Toc& toc() const override { return m_toc; }
    QString path() const override { return m_file.fileName(); }
    bool isPlainImage() const override { return true; }

private:
    explicit ImageFileMedium(const QString& path) : m_file(path) {}

    QFile m_file;
    Toc m_toc;
};

} // namespace vinora
