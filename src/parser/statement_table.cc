#include "parser/statement_table.h"

#include <algorithm>
#include <utility>

namespace parser {

namespace {

// Statements stay in the closed list until the writers are done, often for the whole parse:
// give back what their record vectors over-allocated while they grew.
void Compact(TraceStatement& statement) {
  statement.waits.shrink_to_fit();
  statement.binds.shrink_to_fit();
  statement.stats.shrink_to_fit();
  statement.parse_calls.shrink_to_fit();
  statement.exec_calls.shrink_to_fit();
  statement.fetch_calls.shrink_to_fit();
}

}  // namespace

void StatementTable::IndexLast() {
  const auto last = std::prev(open_.end());
  if (!first_open_.emplace((*last)->cursor, last).second) ++unindexed_;
}

void StatementTable::Unindex(StatementList::iterator at) {
  const CursorNo cursor = (*at)->cursor;
  const auto entry = first_open_.find(cursor);
  if (entry == first_open_.end() || entry->second != at) {
    if (unindexed_ > 0) --unindexed_;
    return;
  }
  if (unindexed_ > 0) {
    const auto next = std::find_if(std::next(at), open_.end(), [cursor](const auto& statement) {
      return statement->cursor == cursor;
    });
    if (next != open_.end()) {
      entry->second = next;
      --unindexed_;
      return;
    }
  }
  first_open_.erase(entry);
}

void StatementTable::MoveToClosed(StatementList::iterator at) {
  Unindex(at);
  Compact(**at);
  closed_.splice(closed_.end(), open_, at);
  if (closed_by_text_built_) IndexClosedByText(at);
}

void StatementTable::IndexClosedByText(StatementList::iterator at) {
  closed_by_text_[(*at)->header.text].push_back(at);
}

TraceStatement* StatementTable::ForCursor(CursorNo cursor) {
  if (cache_set_ && cursor == cached_cursor_) return cached_;
  const auto entry = first_open_.find(cursor);
  if (entry == first_open_.end()) return nullptr;
  TraceStatement* statement = entry->second->get();
  Cache(cursor, statement);
  return statement;
}

void StatementTable::Cache(CursorNo cursor, TraceStatement* statement) {
  cache_set_ = true;
  cached_cursor_ = cursor;
  cached_ = statement;
}

TraceStatement* StatementTable::OpenNew(CursorNo cursor) {
  auto statement = std::make_unique<TraceStatement>();
  statement->sequence = counter_++;
  statement->cursor = cursor;
  open_.push_back(std::move(statement));
  IndexLast();
  return open_.back().get();
}

void StatementTable::CloseCursor(CursorNo cursor) {
  const auto entry = first_open_.find(cursor);
  if (entry != first_open_.end()) MoveToClosed(entry->second);
}

std::size_t StatementTable::CloseFirst(std::int64_t n) {
  for (std::int64_t moved = 0; moved < n && !open_.empty(); ++moved) {
    MoveToClosed(open_.begin());
  }
  return open_.size();
}

void StatementTable::CloseAll() {
  while (!open_.empty()) MoveToClosed(open_.begin());
}

TraceStatement* StatementTable::ReopenBySqlText(std::string_view text) {
  if (!closed_by_text_built_) {
    for (auto at = closed_.begin(); at != closed_.end(); ++at) IndexClosedByText(at);
    closed_by_text_built_ = true;
  }
  const auto entry = closed_by_text_.find(text);
  if (entry == closed_by_text_.end()) return nullptr;
  std::deque<StatementList::iterator> rest = std::move(entry->second);
  const StatementList::iterator at = rest.front();
  rest.pop_front();
  // The key views the text of the entry's first statement, which is leaving: the entry is keyed
  // anew by the next one.
  closed_by_text_.erase(entry);
  if (!rest.empty()) closed_by_text_.emplace((*rest.front())->header.text, std::move(rest));
  open_.splice(open_.end(), closed_, at);
  IndexLast();
  return open_.back().get();
}

void StatementTable::RenumberLast(CursorNo cursor) {
  const auto last = std::prev(open_.end());
  Unindex(last);
  (*last)->cursor = cursor;
  IndexLast();
}

void StatementTable::ClearClosed() {
  if (cache_set_) {
    for (const auto& statement : closed_) {
      if (statement.get() == cached_) {
        cache_set_ = false;
        cached_ = nullptr;
        break;
      }
    }
  }
  closed_.clear();
  closed_by_text_.clear();
}

}  // namespace parser
