#pragma once

#include <QString>
#include <functional>

namespace vinora {

class Prompter;

// How a list window deletes and makes the list of the disc on view.
struct DiscListSteps
{
    std::function<void()> remove;  // deletes the list
    std::function<void()> refresh; // shows the disc again, now without a list
    std::function<void()> create;  // asks for the options and makes a new list
};

enum class ListChange { Delete, Recreate };

// "Удалить список" and "Пересоздать список": asks `question` (a question for a deletion, a
// warning for a re-creation); on Yes deletes the list, shows the disc again and, for a
// re-creation, goes on to make the new list.
void changeListAsk(Prompter& prompter, ListChange change, const QString& question,
                   const DiscListSteps& steps);

} // namespace vinora
