#pragma once

#include <QString>

namespace vinora {

// The texts by which the three dictionary editors (styles, descriptions, genres) differ.
struct DictionaryKind
{
    QString formName; // frmEditStyle, frmEditDescription, frmEditGenre
    QString table;    // Стиль, Описание, Жанр
    QString key;
    QString title;
    QString addTitle, addPrompt;
    QString changeTitle, changePrompt;
    QString lengthMessage;
    QString duplicateStart, duplicateEnd; // "Стиль '" name "' уже существует. Ввести другой?"
    QString quoteMessage;
    QString deletePrompt; // followed by name + "'?"
    QString protectedOnDelete, protectedOnChange;
    QString inUseStart, inUseEnd;
};

enum class Dictionary { Style, Description, Genre };
const DictionaryKind& dictionaryKind(Dictionary dictionary);

} // namespace vinora
