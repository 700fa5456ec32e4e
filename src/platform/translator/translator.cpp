// SPDX-License-Identifier: MIT
#include <quandel/trans/translator.h>

#include "qmfilecheck.h"

#include <vexa/diagnostics/warning.h>

#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QTranslator>

#include <map>
#include <mutex>
#include <shared_mutex>
#include <vector>

// VEXA_WARNING writes into the translator's own category, so that a host can filter its
// warnings apart from the widget library's.
#define VEXA_LOGGING_CATEGORY lcTranslator

namespace quandel::trans {

namespace {

Q_LOGGING_CATEGORY(lcTranslator, "vexa.platform.translator")

// Far above any language file; a larger file is not read into memory.
constexpr qint64 maxFileSize = 64 * 1024 * 1024;

// One loaded file: QTranslator reads the bytes in place, so they live as long as it does and
// are never written to.
struct LoadedFile
{
    QByteArray bytes;
    // Declared after the bytes, so destroyed before them.
    std::unique_ptr<QTranslator> translator;
};

} // namespace

struct Translator::Impl
{
    std::shared_mutex mutex;
    QStringList languages;
    std::map<QString, std::vector<LoadedFile>> translators;
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

    // The file is read once; QTranslator is given the very bytes that were checked, so the
    // file cannot change between the check and the lookups.
    QFile file(info.absoluteFilePath());
    if (!file.open(QIODevice::ReadOnly)) {
        VEXA_WARNING(QStringLiteral("Translator: cannot read language file \"%1\"").arg(path));
        return false;
    }
    LoadedFile loaded;
    const qint64 size = file.size();
    if (size <= maxFileSize) {
        loaded.bytes = file.readAll();
    }
    file.close();
    // Checked again after reading: the file may have grown meanwhile.
    if (size > maxFileSize || loaded.bytes.size() > maxFileSize) {
        VEXA_WARNING(QStringLiteral("Translator: language file \"%1\" is larger than the %2 bytes "
                                    "a language file may have")
                         .arg(path)
                         .arg(maxFileSize));
        return false;
    }

    // QTranslator trusts every length and offset in a file, so one corrupt byte can make a
    // lookup read far outside it. The layout is checked here first.
    const QmFileCheck check(loaded.bytes);
    if (check.verdict() == QmFileCheck::Verdict::NotQmFile) {
        VEXA_WARNING(QStringLiteral("Translator: \"%1\" is not a compiled language file (%2)")
                         .arg(path, check.problem()));
        return false;
    }
    if (!check.isValid()) {
        VEXA_WARNING(
            QStringLiteral("Translator: language file \"%1\" is malformed and not loaded: %2")
                .arg(path, check.problem()));
        return false;
    }
    // QTranslator would open each named file from disk by itself, unchecked and searching
    // other names, so such a file is refused.
    if (!check.dependencies().isEmpty()) {
        VEXA_WARNING(QStringLiteral("Translator: language file \"%1\" depends on other files "
                                    "(%2); load those files instead")
                         .arg(path, check.dependencies().join(QStringLiteral(", "))));
        return false;
    }

    loaded.translator = std::make_unique<QTranslator>();
    const auto* const data = reinterpret_cast<const uchar*>(loaded.bytes.constData());
    if (!loaded.translator->load(data, loaded.bytes.size())) {
        VEXA_WARNING(
            QStringLiteral("Translator: \"%1\" is not a compiled language file").arg(path));
        return false;
    }
    const QString code = loaded.translator->language();
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
    list.push_back(std::move(loaded));
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
    for (const LoadedFile& file : it->second) {
        QString text = file.translator->translate(scope1, key, scope2);
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
