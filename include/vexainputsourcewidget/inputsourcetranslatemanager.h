// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <quandel/trans/translator.h>

#include <memory>

/// The process-wide owner of the translator that every widget of the library reads its texts
/// from, so that one language switch reaches the whole panel and its dialogs. Every text is
/// looked up as translate(translator(), "InputSource", "Widget", key).
///
/// GUI thread, except that the first call of instance() may come from any thread: the single
/// instance is created once, safely, on first use, and destroyed when the process exits.
class VEXAINPUTSOURCEWIDGET_EXPORT InputSourceTranslateManager
{
public:
    /// The single manager.
    static InputSourceTranslateManager& instance();

    /// The translator the manager owns; the same object on every call.
    quandel::trans::Translator& translator();

    ~InputSourceTranslateManager();

    InputSourceTranslateManager(const InputSourceTranslateManager&) = delete;
    InputSourceTranslateManager& operator=(const InputSourceTranslateManager&) = delete;

private:
    InputSourceTranslateManager();

    std::unique_ptr<quandel::trans::Translator> const m_translator;
};
