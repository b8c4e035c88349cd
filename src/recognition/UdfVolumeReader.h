#pragma once

#include "recognition/VolumeReader.h"

typedef struct udf_s udf_t;

namespace vinora {

// Reads the folders of a UDF volume (DVDs, UDF bridge discs) with libudf.
class UdfVolumeReader final : public VolumeReader
{
public:
    // The reader of the UDF volume in the image file `path`, or nothing when it has none or
    // when a child process walking it the way a scan will did not come through.
    static std::unique_ptr<VolumeReader> open(const QString& path);
    ~UdfVolumeReader() override;

    std::optional<QList<VolumeEntry>> list(const QString& folder) override;
    std::optional<QByteArray> tail(const QString& file, int count) override;
    bool copy(const QString& file, QIODevice& out, const std::function<bool()>& cancelled) override;
    QString source() const override { return m_path; }

private:
    static std::unique_ptr<UdfVolumeReader> openUnprobed(const QString& path);
    // Hands the file's blocks to `block` in order, the last one cut to the file's end;
    // false when it is missing, damaged, or `block` refuses one.
    bool readFile(const QString& file, const std::function<bool(const QByteArray&)>& block);
    UdfVolumeReader(udf_t* udf, QString path) : m_udf(udf), m_path(std::move(path)) {}

    udf_t* m_udf;
    QString m_path;
};

} // namespace vinora
