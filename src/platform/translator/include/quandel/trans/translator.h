// SPDX-License-Identifier: MIT
#pragma once

#include <quandel/trans/quandel_translator_export.h>

#include <QString>
#include <QStringList>

#include <memory>

namespace quandel::trans {

/// Holds the texts of several languages, read from compiled Qt Linguist files (.qm), and
/// one current language that lookups use. A file's language is the one recorded in the file
/// itself (the `language` attribute of its .ts source), not taken from its name.
///
/// Lookups map the two scopes of a text onto Qt Linguist's model: the first scope is the
/// context, the second the disambiguation (the comment in the .ts source), and the key is the
/// source text. All members may be called from any thread.
class QUANDEL_TRANSLATOR_EXPORT Translator
{
public:
    /// No languages loaded, no current language.
    Translator();
    ~Translator();

    Translator(const Translator&) = delete;
    Translator& operator=(const Translator&) = delete;

    /// Loads one compiled language file. Returns false, with a warning, when the file cannot be
    /// read, is malformed (its layout is checked before Qt reads it), names other files as
    /// dependencies or records no language; the languages already loaded stay as they were.
    /// The file is read once, into memory kept with its texts. A second file of a language
    /// already loaded is consulted after the earlier ones of that language.
    bool load(const QString& path);

    /// Makes `code` (for example "zh_CN") the language of later lookups. A code with no loaded
    /// file is accepted: lookups then yield their keys until such a file is loaded.
    void switchLanguage(const QString& code);

    /// The language of lookups; empty before the first switchLanguage().
    QString currentLanguage() const;

    /// Codes of the languages loaded so far, in the order they were first loaded.
    QStringList languages() const;

    /// The text of `key` in the current language, or a null string when there is none.
    QString lookup(const char* scope1, const char* scope2, const char* key) const;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

/// The text of `key` in the translator's current language, looked up under the two scopes;
/// the key itself when the current language has no text for it.
QUANDEL_TRANSLATOR_EXPORT QString translate(const Translator& translator, const char* scope1,
                                            const char* scope2, const char* key);

} // namespace quandel::trans
