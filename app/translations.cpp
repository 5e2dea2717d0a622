#include "app/translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include "app/orvixlogging.h"

namespace Translations {

QString install(QCoreApplication *application)
{
    const QLocale locale;
    auto *own = new QTranslator(application);
    if (!own->load(locale, QStringLiteral("orvix"), QStringLiteral("_"), QStringLiteral(":/i18n"))) {
        delete own;
        return QString();
    }
    QCoreApplication::installTranslator(own);
    // Qt's own texts in the same language: a German window with English
    // buttons in its message boxes would look half done.
    auto *qt = new QTranslator(application);
    if (qt->load(locale, QStringLiteral("qt"), QStringLiteral("_"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(qt);
    else
        qCWarning(lcApp) << "Qt's own translations for" << own->language() << "are missing: standard buttons stay English";
    return own->language().section(QLatin1Char('_'), 0, 0);
}

} // namespace Translations
