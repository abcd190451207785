// kordiag queries.
#include "diag/Commands.h"
#include "diag/QueryAnswers.h"
#include "diag/Reading.h"

ExitCode RunQueries(const Arguments& arguments, Streams& streams) {
    return Answer(arguments, streams, [](auto& output) { WriteQueries(output); });
}

void WriteQueries(JsonWriter& json) {
    json.BeginArray();
    for (const AskedQuery& query : AskedQueries) {
        const QueryAnswer answer = Ask(query);
        json.BeginObject();
        json.Key(L"query").Text(std::wstring_view(query.Name));
        json.Key(L"key").Text(KeyName(query));
        json.Key(L"value").Text(std::wstring_view(query.Query->Value));
        json.Key(L"found").Boolean(answer.IsFound);
        json.Key(L"type").Text(std::wstring_view(answer.Type));
        json.Key(L"result");
        if (query.Text == nullptr) {
            json.Boolean(answer.IsYes);
        } else {
            json.Text(answer.Text);
        }
        json.EndObject();
    }
    json.EndArray();
}

void WriteQueries(Utf8Output& output) {
    for (const AskedQuery& query : AskedQueries) {
        const QueryAnswer answer = Ask(query);
        output.Write(query.Name, L": ");
        if (query.Text == nullptr) {
            output.Write(answer.IsYes ? L"yes" : L"no");
        } else {
            output.Write(L"\"", Printable(answer.Text), L"\"");
        }
        output.Write(L"\n  \"", query.Query->Value, L"\" of ", KeyName(query),
                     answer.IsFound ? L", type " : L": does not exist", answer.Type, L"\n");
    }
}
