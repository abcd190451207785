// kordiag page, kordiag sizes.
#include <string>

#include "diag/Commands.h"
#include "diag/PageDocument.h"
#include "diag/Reading.h"

ExitCode RunPage(const Arguments& arguments, Streams& streams) {
    const PageState state;
    if (!arguments.Has(OptionDocument)) {
        streams.Out.Write(state.Page.PageHtml);
        return ExitCode::Answered;
    }
    std::wstring document;
    if (!MakeDocument(state.Page.PageHtml, document)) {
        streams.Err.Write(L"kordiag page: the program's resources are damaged\n");
        return ExitCode::No;
    }
    streams.Out.Write(document);
    return ExitCode::Answered;
}

ExitCode RunSizes(const Arguments& arguments, Streams& streams) {
    const PageState state(arguments.Dpi);
    return Answer(arguments, streams, [&](auto& output) { WriteSizes(output, state); });
}

void WriteSizes(JsonWriter& json, const PageState& state) {
    const ControlCenterPage& page = state.Page;
    json.BeginObject();
    json.Key(L"dpi").Number(std::int64_t{state.Dpi});
    json.Key(L"sectionBaseHeight").Number(page.SectionBaseHeight);
    json.Key(L"itemHeight").Number(page.ItemHeight);
    json.Key(L"baseWidth").Number(page.BaseWidth);
    json.Key(L"baseHeight").Number(page.BaseHeight);
    json.Key(L"windowWidth").Number(page.WindowWidth);
    json.Key(L"windowHeight").Number(page.WindowHeight);
    json.Key(L"rows").BeginArray();
    for (const std::int64_t height : state.RowHeights) {
        json.Number(height);
    }
    json.EndArray();
    json.EndObject();
}

void WriteSizes(Utf8Output& output, const PageState& state) {
    const ControlCenterPage& page = state.Page;
    output.Write(L"At ", state.Dpi, L" DPI, in pixels:\n");
    output.Write(L"  a section adds        ", page.SectionBaseHeight, L"\n");
    output.Write(L"  each shown item adds  ", page.ItemHeight, L"\n");
    output.Write(L"  window without rows   ", page.BaseWidth, L" x ", page.BaseHeight, L"\n");
    output.Write(L"  rows                 ");
    for (const std::int64_t height : state.RowHeights) {
        output.Write(L" ", height);
    }
    output.Write(state.RowHeights.Count() == 0 ? L" none\n" : L"\n");
    output.Write(L"  window                ", page.WindowWidth, L" x ", page.WindowHeight, L"\n");
}
