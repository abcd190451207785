// Builds the tree from markup. It never fails: tags that make no sense where they stand are left
// out, what is left open is closed where its container ends, and nesting has a limit.
#pragma once

#include <string_view>
#include <vector>

#include "wine/htmldocument/engine/Node.h"

namespace html {

// The html element of a whole document; it always has a head and a body.
NodePtr ParseDocument(std::wstring_view markup);

// The nodes that the markup becomes inside a block of text.
std::vector<NodePtr> ParseFragment(std::wstring_view markup);

} // namespace html
