#pragma once

#include "recognition/Medium.h"

typedef struct _CdIo CdIo_t;

namespace vinora {

// A drive or a CD image that libcdio reads: device nodes, CUE/BIN, NRG, cdrdao TOC.
class CdioMedium final : public Medium
{
public:
    enum class Source {
        Device,
        CueSheet,
        Nero,
        CdrdaoToc,
    };
    // The medium in a drive or image; an image is read by the parser of its own format only.
    static std::unique_ptr<Medium> open(const QString& path, Source source);
    ~CdioMedium() override;

    bool readSector(qint32 lsn, Sector& out) override;
    const Toc& toc() const override { return m_toc; }
    QString path() const override { return m_path; }
    bool isPlainImage() const override { return false; }

private:
    CdioMedium(CdIo_t* cdio, QString path) : m_cdio(cdio), m_path(std::move(path)) {}
    bool readToc();

    CdIo_t* m_cdio;
    QString m_path;
    Toc m_toc;
};

// libcdio speaks to stderr about damaged images; the program tells the user instead.
void silenceCdioLog();

} // namespace vinora
