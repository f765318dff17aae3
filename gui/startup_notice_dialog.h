#pragma once

#include <QString>

// Tells the user, once, about a problem met while starting (a damaged settings file).
void ShowStartupNotice(const QString& text);
