// inspect_json.cpp: the JSON rendering of an inspect report.
#include "inspect_report.h"
#include "json_writer.h"

namespace adestool {

namespace {

void WriteValue(const ReportNode &node, JsonWriter *json) {
  switch (node.kind()) {
    case ReportNode::Kind::kString:
      json->String(node.text());
      return;
    case ReportNode::Kind::kInteger:
      json->Int(node.integer());
      return;
    case ReportNode::Kind::kBoolean:
      json->Bool(node.boolean());
      return;
    case ReportNode::Kind::kNull:
      json->Null();
      return;
    case ReportNode::Kind::kObject:
      json->BeginObject();
      for (const ReportNode &child : node.children()) {
        if (!child.inJson()) continue;
        json->Key(child.key());
        WriteValue(child, json);
      }
      json->EndObject();
      return;
    case ReportNode::Kind::kArray:
      json->BeginArray();
      for (const ReportNode &child : node.children()) {
        if (child.inJson()) WriteValue(child, json);
      }
      json->EndArray();
      return;
  }
}

}  // namespace

std::string RenderJson(const ReportNode &root) {
  JsonWriter json;
  WriteValue(root, &json);
  return json.Finish();
}

}  // namespace adestool
