#include <quandel/trans/translator.h>

#include <vexa/diagnostics/warning.h>

#include <QFileInfo>
#include <QTranslator>

#include <map>
#include <mutex>
#include <shared_mutex>
#include <vector>

namespace quandel::trans {

struct Translator::Impl
{
    std::shared_mutex mutex;
    QStringList languages;
    std::map<QString, std::vector<std::unique_ptr<QTranslator>>> translators;
    QString current;
};

Translator::Translator()
    : d(std::make_unique<Impl>())
{}

Translator::~Translator() = default;

bool Translator::load(const QString& path)
{
    const QFileInfo info(path);
    if (!info.isFile() || !info.isReadable()) {
        VEXA_WARNING(QStringLiteral("Translator: cannot read language file \"%1\"").arg(path));
        return false;
    }

    // An empty, non-null suffix and delimiter list make QTranslator open exactly this file
    // instead of first trying "<path>.qm" and then names with parts of the path cut off.
    const QString noSearch = QLatin1String("");
    auto translator = std::make_unique<QTranslator>();
    if (!translator->load(info.absoluteFilePath(), QString(), noSearch, noSearch)) {
        VEXA_WARNING(
            QStringLiteral("Translator: \"%1\" is not a compiled language file").arg(path));
        return false;
    }
    const QString code = translator->language();
    if (code.isEmpty()) {
        VEXA_WARNING(QStringLiteral("Translator: language file \"%1\" records no language; "
                                    "set the language attribute of its .ts source")
                         .arg(path));
        return false;
    }

    // The file is read before taking the lock so that lookups are not held up by disk access.
    std::unique_lock lock(d->mutex);
    auto& list = d->translators[code];
    if (list.empty()) {
        d->languages.append(code);
    }
    list.push_back(std::move(translator));
    return true;
}

void Translator::switchLanguage(const QString& code)
{
    std::unique_lock lock(d->mutex);
    d->current = code;
}

QString Translator::currentLanguage() const
{
    std::shared_lock lock(d->mutex);
    return d->current;
}

QStringList Translator::languages() const
{
    std::shared_lock lock(d->mutex);
    return d->languages;
}

QString Translator::lookup(const char* scope1, const char* scope2, const char* key) const
{
    if (key == nullptr) {
        return QString();
    }
    std::shared_lock lock(d->mutex);
    const auto it = d->translators.find(d->current);
    if (it == d->translators.end()) {
        return QString();
    }
    for (const auto& translator : it->second) {
        QString text = translator->translate(scope1, key, scope2);
        if (!text.isNull()) {
            return text;
        }
    }
    return QString();
}

QString translate(const Translator& translator, const char* scope1, const char* scope2,
                  const char* key)
{
    QString text = translator.lookup(scope1, scope2, key);
    return text.isNull() ? QString::fromUtf8(key) : text;
}

} // namespace quandel::trans
