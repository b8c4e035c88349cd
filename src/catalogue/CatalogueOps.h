#pragma once

#include "catalogue/CatalogueKind.h"

#include <QString>
#include <optional>

namespace vinora {

class AppContext;
class Db;

// The cover file of a disc: box/<prefix><number>.box in the application folder.
QString coverPath(const AppContext& ctx, const CatalogueKind& kind, int number);

// True when `path` holds a picture the program can show.
bool isReadablePicture(const QString& path);

// Copies a picture to the disc's cover file (replacing an old one), making the box folder.
// AppError 75 when the copy fails.
void setCover(const AppContext& ctx, const CatalogueKind& kind, int number, const QString& picture);

// The name of the borrower who has the disc with record key `key`, or empty.
QString loanHolderName(const Db& db, const CatalogueKind& kind, qint64 key);

// Deletes a disc: its cover, its per-disc lists, its row, and stamps the catalogue's change.
void deleteDisc(AppContext& ctx, const CatalogueKind& kind, qint64 key, int number,
                const QStringList& listIds);

// The number and slot of the row bound to `id` (the disc in the drive), looking at as many
// bindings as the catalogue looks at; nothing when no row holds it.
struct DiscPlace
{
    int number = 0;
    int slot = 1;
};
std::optional<DiscPlace> findDiscPlace(const Db& db, const CatalogueKind& kind, const QString& id);

} // namespace vinora
