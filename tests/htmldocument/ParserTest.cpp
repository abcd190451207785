// Markup in, tree out: written as markup again, with every tag that the parser closed by itself.
#include <gtest/gtest.h>

#include "wine/htmldocument/engine/HtmlParser.h"

namespace html {
namespace {

std::wstring Parse(std::wstring_view markup) {
    const NodePtr root = Node::MakeElement(L"div", {});
    root->ReplaceChildren(ParseFragment(markup));
    return root->InnerHtml();
}

struct Case {
    const wchar_t* markup;
    const wchar_t* tree;
};

TEST(Parser, Fragments) {
    const Case cases[] = {
        // Texts and references.
        {L"plain", L"plain"},
        {L"a < b && c > d", L"a &lt; b &amp;&amp; c &gt; d"},
        {L"&lt;b&gt; &amp; &quot;x&quot; &nbsp;&#65;&#x42;", L"&lt;b&gt; &amp; \"x\" &nbsp;AB"},
        {L"&#0;&#xD800;&#x110000;&#99999999999;", L"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {L"&#x1F600;", L"\U0001F600"},
        {L"&copy 2020 &unknown; &", L"\u00A9 2020 &amp;unknown; &amp;"},
        // Tags and attributes as the launcher writes them.
        {L"<td class =\"column\" width=\"50%\" valign=\"top\">x", L"x"},
        {L"<div id=Quick StartSection><h2>T</h2><ul></ul></div>",
         L"<div id=\"Quick\" startsection=\"\"><h2>T</h2><ul></ul></div>"},
        {L"<SPAN class=item id=A_1 style=color:#0000FF;text-decoration:underline>x</SPAN>",
         L"<span class=\"item\" id=\"A_1\" style=\"color: #0000FF; text-decoration: underline;\">x"
         L"</span>"},
        {L"<a b='1' b='2' C = 3 d>x</a>", L"<a b=\"1\" c=\"3\" d=\"\">x</a>"},
        {L"<a b=\"&quot;&lt;\">x</a>", L"<a b=\"&quot;<\">x</a>"},
        {L"<p / id = x>y", L"<p id=\"x\">y</p>"},
        {L"<a =b>x</a>", L"<a =b=\"\">x</a>"},
        // What is closed by itself.
        {L"<ul><li>a<li>b<ul><li>c</ul><li>d</ul>",
         L"<ul><li>a</li><li>b<ul><li>c</li></ul></li><li>d</li></ul>"},
        {L"<p>a<p>b<div>c</div>", L"<p>a</p><p>b</p><div>c</div>"},
        {L"<h2>a<h2>b</h3>c", L"<h2>a</h2><h2>b</h2>c"},
        {L"<div><span>a</div>b", L"<div><span>a</span></div>b"},
        {L"<span><div>a</span>b</div>c", L"<span><div>ab</div>c</span>"},
        // Tables.
        {L"<table><tr><td>a<td>b<tr><td>c</table>d",
         L"<table><tbody><tr><td>a</td><td>b</td></tr><tr><td>c</td></tr></tbody></table>d"},
        {L"<table>\n<tr>\n\n<td>a</td><td></tr></table>",
         L"<table><tbody><tr><td>a</td><td></td></tr></tbody></table>"},
        {L"<table><td>a</table>", L"<table><tbody><tr><td>a</td></tr></tbody></table>"},
        {L"<table><tr><td><table><tr><td>x</td></tr></table></td></tr></table>",
         L"<table><tbody><tr><td><table><tbody><tr><td>x</td></tr></tbody></table></td></tr>"
         L"</tbody></table>"},
        {L"<table>a<b>c</b><tr><td>d</table>",
         L"a<b>c</b><table><tbody><tr><td>d</td></tr></tbody></table>"},
        {L"<table><tr><td><div>a</td><td>b</div>c</table>",
         L"<table><tbody><tr><td><div>a</div></td><td>bc</td></tr></tbody></table>"},
        // Tags that make no sense where they stand.
        {L"</table>x</td></tr></li></span></p></div>", L"x"},
        {L"<tr><td>x</td></tr><tbody>", L"x"},
        {L"<html><head><body id=x>y</body></html>", L"y"},
        // Comments and broken tags.
        {L"a<!-- <b> -- > -->b<!DOCTYPE html>c<?php x ?>d</ e>f", L"abcdf"},
        {L"a<!-- never closed", L"a"},
        {L"a<b", L"a"},
        {L"a<b c=\"d", L"a"},
        {L"a<", L"a&lt;"},
        {L"a</", L"a&lt;/"},
        {L"a<3", L"a&lt;3"},
        {L"<", L"&lt;"},
        {L"", L""},
        {L"<br>a<br/>b<img src=x>c</img>", L"<br>a<br>b<img src=\"x\">c"},
        {L"<script>a<b>c</b></SCRIPT>d<style>x", L"<script>a<b>c</b></script>d<style>x</style>"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.tree, Parse(c.markup)) << c.markup;
    }
}

TEST(Parser, Documents) {
    const Case cases[] = {
        {L"", L"<html><head></head><body></body></html>"},
        {L"x", L"<html><head></head><body>x</body></html>"},
        {L"<html>\r\n<head>\r\n<title>a &amp; b</title></head><body>x</body></html>",
         L"<html><head><title>a &amp; b</title></head><body>x</body></html>"},
        {L"<style>a{}</style><p>x", L"<html><head><style>a{}</style></head><body><p>x</p></body>"
                                    L"</html>"},
        {L"<html lang=en><body id=a><body id=b class=c>x",
         L"<html lang=\"en\"><head></head><body id=\"a\" class=\"c\">x</body></html>"},
        {L"</p></head><div>x</html>y", L"<html><head></head><body><div>xy</div></body></html>"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.tree, ParseDocument(c.markup)->OuterHtml()) << c.markup;
    }
}

TEST(Parser, NullCharactersAndLoneSurrogatesAreNoReasonToFail) {
    EXPECT_EQ(L"ab", Parse(std::wstring_view(L"a\0b", 3)));
    EXPECT_EQ(L"a\xD800z\xDC00", Parse(L"a\xD800z\xDC00"));
}

TEST(Parser, DepthIsLimitedAndNothingIsLost) {
    std::wstring markup;
    for (int i = 0; i < 5000; ++i) {
        markup += L"<div>";
    }
    markup += L"the end";
    const NodePtr root = Node::MakeElement(L"div", {});
    root->ReplaceChildren(ParseFragment(markup));
    EXPECT_EQ(L"the end", root->InnerText());
    size_t depth = 0;
    for (const Node* node = root.get(); !node->Children().empty();
         node = node->Children().back().get()) {
        ++depth;
    }
    EXPECT_LT(depth, 300U);
}

TEST(Node, WhatIsHeldOutlivesItsPlaceInTheTree) {
    NodePtr root = Node::MakeElement(L"div", {});
    root->ReplaceChildren(ParseFragment(L"<p><b>x</b></p>"));
    const NodePtr child = root->Children().front();
    const NodePtr grandchild = child->Children().front();
    EXPECT_TRUE(root->Contains(*grandchild));
    root->ReplaceChildren({});
    EXPECT_EQ(nullptr, child->Parent());
    EXPECT_EQ(child.get(), grandchild->Parent()) << "what hangs together stays together";
    EXPECT_FALSE(root->Contains(*grandchild));
    root->Append(child);
    root.reset();
    EXPECT_EQ(nullptr, child->Parent()) << "the root is gone";
}

TEST(Parser, InnerTextHasNoSuperfluousSpaces) {
    const NodePtr root = Node::MakeElement(L"div", {});
    root->ReplaceChildren(ParseFragment(L" \r\n a  <b> b</b>\tc<br> d "));
    EXPECT_EQ(L"a b c\r\nd", root->InnerText());
}

} // namespace
} // namespace html
