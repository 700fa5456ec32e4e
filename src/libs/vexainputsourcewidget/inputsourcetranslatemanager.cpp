// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/inputsourcetranslatemanager.h>

InputSourceTranslateManager& InputSourceTranslateManager::instance()
{
    static InputSourceTranslateManager manager;
    return manager;
}

InputSourceTranslateManager::InputSourceTranslateManager()
    : m_translator(std::make_unique<quandel::trans::Translator>())
{}

InputSourceTranslateManager::~InputSourceTranslateManager() = default;

quandel::trans::Translator& InputSourceTranslateManager::translator()
{
    return *m_translator;
}
