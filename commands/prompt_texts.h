#pragma once
// The title and label(s) each prompt shows, by the command that opens it.

#include <QString>

#include <optional>

struct PromptTexts {
  QString title;
  QString label;
  QString secondLabel;  // two-line prompts only
};

std::optional<PromptTexts> OneLinePromptTexts(int command);
std::optional<PromptTexts> TwoLinePromptTexts(int command);
