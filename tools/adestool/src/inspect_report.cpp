// inspect_report.cpp: building the report tree.
#include "inspect_report.h"

#include <utility>

namespace adestool {

ReportNode ReportNode::Object(std::string key, std::string label) {
  return ReportNode(Kind::kObject, std::move(key), std::move(label));
}

ReportNode ReportNode::Array(std::string key, std::string label) {
  return ReportNode(Kind::kArray, std::move(key), std::move(label));
}

ReportNode &ReportNode::Add(ReportNode node) {
  children_.push_back(std::move(node));
  return children_.back();
}

ReportNode &ReportNode::String(std::string key, std::string label, std::string value) {
  ReportNode node(Kind::kString, std::move(key), std::move(label));
  node.text_ = std::move(value);
  return Add(std::move(node));
}

ReportNode &ReportNode::Integer(std::string key, std::string label, int64_t value) {
  ReportNode node(Kind::kInteger, std::move(key), std::move(label));
  node.integer_ = value;
  return Add(std::move(node));
}

ReportNode &ReportNode::Boolean(std::string key, std::string label, bool value) {
  ReportNode node(Kind::kBoolean, std::move(key), std::move(label));
  node.boolean_ = value;
  return Add(std::move(node));
}

ReportNode &ReportNode::Null(std::string key, std::string label) {
  return Add(ReportNode(Kind::kNull, std::move(key), std::move(label)));
}

ReportNode &ReportNode::SetInlineText(std::string text) {
  text_ = std::move(text);
  return *this;
}

ReportNode &ReportNode::TextOnly() {
  show_ = Show::kText;
  return *this;
}

ReportNode &ReportNode::JsonOnly() {
  show_ = Show::kJson;
  return *this;
}

const ReportNode *ReportNode::Find(std::string_view key) const {
  for (const ReportNode &child : children_) {
    if (child.key_ == key) return &child;
  }
  return nullptr;
}

}  // namespace adestool
