// What keeps a link that is shown from opening, or the page from appearing: help, documents and the
// HTML engine of this system.
#pragma once

#include <optional>

#include "diag/Cause.h"

// A compiled help file whose pages the viewer would not show.
std::optional<Cause> CauseOfBlockedHelp(const CKORString& file);

// hh.exe is not where the shell looks.
std::optional<Cause> CauseOfNoHelpViewer();

// No program is registered for documents of that type; extension has its dot.
std::optional<Cause> CauseOfNoProgram(const CKORString& extension);

// The control that shows the page, or the document in it, cannot be created.
std::optional<Cause> CauseOfNoEngine();

// The launcher beside this program does not hold the page where the engine looks for it.
std::optional<Cause> CauseOfNoPage();
