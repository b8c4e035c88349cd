#pragma once

#include <QByteArray>
#include <QString>

namespace vinora {

// Structural checks of the CD image formats whose parsers we do not trust with damaged
// files: what they read must lie inside the file and their counts must fit. A file that
// fails is no disc; one that passes may still be refused by the probe.

// A Nero image: the footer ("NERO" with a 32-bit or "NER5" with a 64-bit offset), then
// chunks with known sizes up to "END!", all inside the file.
bool nrgLooksSound(const QByteArray& tail, qint64 fileSize);
bool nrgFileLooksSound(const QString& path);
// A CUE sheet: a text file of sane size whose FILE entries exist beside it (or where an
// absolute path says) and whose track numbers fit a disc.
bool cueLooksSound(const QByteArray& text, const QString& folder);
bool cueFileLooksSound(const QString& path);
// A cdrdao TOC file: a text file of sane size.
bool tocFileLooksSound(const QString& path);

// The checks above chosen by the image's suffix ("cue", "nrg", "toc").
bool cdImageLooksSound(const QString& path, const QString& suffix);

} // namespace vinora
