// The program in the user's language: its own texts and Qt's (the standard
// dialogs and buttons), chosen from the system's language (LANG, LANGUAGE).
// English needs nothing: it is the language the texts are written in.
#pragma once

class QCoreApplication;

namespace Translations {

// Installs both for the system's language, and logs which it took.
void install(QCoreApplication *application);

} // namespace Translations
