// The contents of the discs searched for scripts: the files and folders of the computer
// discs, the track titles of the audio discs.
#include "cli/Cli.h"
#include "frame/AppContext.h"
#include "search/ContentsSearch.h"
#include "search/SearchTexts.h"
#include "store/Category.h"
#include "store/ContentsLists.h"

#include <QCommandLineParser>

namespace vinora::cli {
namespace {

const QCommandLineOption kTracks(QStringLiteral("tracks"),
                                 QStringLiteral("Search the track titles of the audio discs."));
const QCommandLineOption kFolders(QStringLiteral("folders"),
                                  QStringLiteral("Search the folders by their path instead of the files by "
                                                 "their name."));
const QCommandLineOption kComments(QStringLiteral("comments"),
                                   QStringLiteral("Search the comments of those files or folders instead."));
const QCommandLineOption kWhole(QStringLiteral("whole"),
                                QStringLiteral("The whole field equals TEXT instead of containing it."));

int search(AppContext& ctx, const QCommandLineParser& parser)
{
    const SearchRequest request{parser.isSet(kTracks), parser.isSet(kFolders), parser.isSet(kWhole),
                                parser.isSet(kComments), parser.positionalArguments().at(0)};
    ctx.resolveDatabasePaths();
    const SearchDatabases databases = searchDatabases(ctx, request);
    requireDatabase(databases.catalogue,
                    {categoryInfo(request.tracks ? Category::Audio : Category::Computer).table});
    requireDatabase(
        databases.contents,
        {QStringLiteral("Списки"),
         contentsDescriptor(request.tracks ? ContentsKind::Tracks : ContentsKind::Files).rowsTable});
    SearchOutcome outcome;
    onDatabase(databases.contents, [&] {
        outcome = searchContents(databases, request, [](const QList<SearchHit>& batch) {
            for (const SearchHit& hit : batch) {
                print(QStringList{QString::number(hit.number), QString::number(hit.disc), hit.path, hit.name}
                          .join(u'\t'));
            }
        });
    });
    if (outcome.found == 0) {
        throw Failure{Refused, nothingFoundMessage(request)};
    }
    return Done;
}

} // namespace

QList<Verb> searchVerbs()
{
    return {
        {QStringLiteral("search"),
         QStringLiteral("Find files, folders or tracks of the catalogue's discs by name or comment"),
         {{QStringLiteral("TEXT"),
           QStringLiteral("What the name, path or comment contains (or is, with --whole).")}},
         {kTracks, kFolders, kComments, kWhole},
         QStringLiteral("Prints a line per hit: disc number, place of the disc in its set, path, name (the\n"
                        "title for tracks, with an empty path), separated by tabs. Case is ignored; in TEXT\n"
                        "'*' stands for any run of characters and '?' for any one character, every other\n"
                        "character for itself. --folders and --comments mean nothing with --tracks."),
         search},
    };
}

} // namespace vinora::cli
