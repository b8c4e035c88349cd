#pragma once

#include "catalogue/CatalogueKind.h"

#include <QString>

#include <optional>

namespace vinora {

class AppContext;
class Db;

// The cover file of a disc: box/<prefix><number>.box in the application folder.
QString coverPath(const AppContext& ctx, const CatalogueKind& kind, int number);

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
