#include "app/translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include "app/orvixlogging.h"

namespace Translations {

void install(QCoreApplication *application)
{
    const QLocale locale;
    auto *own = new QTranslator(application);
    if (!own->load(locale, QStringLiteral("orvix"), QStringLiteral("_"), QStringLiteral(":/i18n"))) {
        delete own;
        qCInfo(lcApp) << "texts in English, the language they are written in";
        return;
    }
    QCoreApplication::installTranslator(own);
    // Qt's own texts in the same language: a German window with English
    // buttons in its message boxes would look half done.
    auto *qt = new QTranslator(application);
    if (qt->load(locale, QStringLiteral("qt"), QStringLiteral("_"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(qt);
    else
        qCWarning(lcApp) << "Qt's own translations for" << own->language() << "are missing: standard buttons stay English";
    qCInfo(lcApp) << "texts in" << own->language();
}

} // namespace Translations
