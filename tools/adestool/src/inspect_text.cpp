// inspect_text.cpp: the human-readable rendering of an inspect report.
#include "inspect_report.h"

namespace adestool {

namespace {

bool HasTextChildren(const ReportNode &node) {
  for (const ReportNode &child : node.children()) {
    if (child.inText()) return true;
  }
  return false;
}

void RenderNode(const ReportNode &node, size_t depth, std::string *out) {
  if (!node.inText()) return;
  out->append(depth * 2, ' ');
  out->append(node.label());
  switch (node.kind()) {
    case ReportNode::Kind::kString:
      *out += ": " + node.text() + "\n";
      return;
    case ReportNode::Kind::kInteger:
      *out += ": " + std::to_string(node.integer()) + "\n";
      return;
    case ReportNode::Kind::kBoolean:
      *out += node.boolean() ? ": yes\n" : ": no\n";
      return;
    case ReportNode::Kind::kNull:
      *out += ": none\n";
      return;
    case ReportNode::Kind::kObject:
    case ReportNode::Kind::kArray:
      break;
  }
  if (node.kind() == ReportNode::Kind::kObject && !node.text().empty()) {
    *out += ": " + node.text() + "\n";
    return;
  }
  if (node.kind() == ReportNode::Kind::kArray && !HasTextChildren(node)) {
    *out += ": none\n";
    return;
  }
  *out += ":\n";
  for (const ReportNode &child : node.children()) RenderNode(child, depth + 1, out);
}

}  // namespace

std::string RenderText(const ReportNode &root) {
  std::string out;
  for (const ReportNode &child : root.children()) RenderNode(child, 0, &out);
  return out;
}

}  // namespace adestool
