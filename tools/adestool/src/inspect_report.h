// inspect_report.h: the report of `adestool inspect` as a plain tree, and
// its two renderings (human text and JSON).
//
// A node is a scalar (string, integer, boolean, null), an object (named
// members in a fixed order) or an array. Each node carries its JSON key and
// its text label; an object may also carry a one-line text form, which the
// text rendering prints instead of its members (an algorithm is one line in
// the text and {"oid": ..., "name": ...} in JSON).
#ifndef ADESTOOL_INSPECT_REPORT_H
#define ADESTOOL_INSPECT_REPORT_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace adestool {

class ReportNode {
 public:
  enum class Kind { kString, kInteger, kBoolean, kNull, kObject, kArray };

  static ReportNode Object(std::string key, std::string label);
  static ReportNode Array(std::string key, std::string label);

  // Member adders of an object (or item adders of an array: the key is
  // then unused); each returns the added node.
  ReportNode &String(std::string key, std::string label, std::string value);
  ReportNode &Integer(std::string key, std::string label, int64_t value);
  ReportNode &Boolean(std::string key, std::string label, bool value);
  ReportNode &Null(std::string key, std::string label);
  ReportNode &Add(ReportNode node);

  // SetInlineText: the one-line text form of an object.
  ReportNode &SetInlineText(std::string text);
  // TextOnly / JsonOnly: the node appears in one rendering only (a JSON
  // member the text already shows in a label, a text line JSON holds as
  // separate members).
  ReportNode &TextOnly();
  ReportNode &JsonOnly();
  bool inText() const { return show_ != Show::kJson; }
  bool inJson() const { return show_ != Show::kText; }

  Kind kind() const { return kind_; }
  const std::string &key() const { return key_; }
  const std::string &label() const { return label_; }
  const std::string &text() const { return text_; }
  int64_t integer() const { return integer_; }
  bool boolean() const { return boolean_; }
  const std::vector<ReportNode> &children() const { return children_; }
  // Find: the member with this key, or null.
  const ReportNode *Find(std::string_view key) const;

 private:
  ReportNode(Kind kind, std::string key, std::string label)
      : kind_(kind), key_(std::move(key)), label_(std::move(label)) {}

  enum class Show { kBoth, kText, kJson };

  Kind kind_;
  Show show_ = Show::kBoth;
  std::string key_;
  std::string label_;
  std::string text_;  // string value, or the inline text of an object
  int64_t integer_ = 0;
  bool boolean_ = false;
  std::vector<ReportNode> children_;
};

// RenderText: the members of root, one "label: value" line each, nested
// members indented two spaces a level; booleans are "yes"/"no", null is
// "none"; an empty array shows "none".
std::string RenderText(const ReportNode &root);

// RenderJson: root as one JSON object (json_writer.h), final line feed.
std::string RenderJson(const ReportNode &root);

}  // namespace adestool

#endif
