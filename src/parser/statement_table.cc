#include "parser/statement_table.h"

#include <algorithm>

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

void MoveToClosed(StatementList& open, StatementList::iterator at, StatementList& closed) {
  Compact(**at);
  closed.splice(closed.end(), open, at);
}

}  // namespace

TraceStatement* StatementTable::ForCursor(CursorNo cursor) {
  if (cache_set_ && cursor == cached_cursor_) return cached_;
  for (auto& statement : open_) {
    if (statement->cursor == cursor) {
      Cache(cursor, statement.get());
      return statement.get();
    }
  }
  return nullptr;
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
  return open_.back().get();
}

void StatementTable::CloseCursor(CursorNo cursor) {
  const auto at = std::find_if(open_.begin(), open_.end(), [cursor](const auto& statement) {
    return statement->cursor == cursor;
  });
  if (at != open_.end()) MoveToClosed(open_, at, closed_);
}

std::size_t StatementTable::CloseFirst(std::int64_t n) {
  for (std::int64_t moved = 0; moved < n && !open_.empty(); ++moved) {
    MoveToClosed(open_, open_.begin(), closed_);
  }
  return open_.size();
}

void StatementTable::CloseAll() {
  while (!open_.empty()) MoveToClosed(open_, open_.begin(), closed_);
}

TraceStatement* StatementTable::ReopenBySqlText(std::string_view text) {
  for (auto at = closed_.begin(); at != closed_.end(); ++at) {
    if ((*at)->header.text.size() == text.size() && (*at)->header.text == text) {
      open_.splice(open_.end(), closed_, at);
      return open_.back().get();
    }
  }
  return nullptr;
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
}

}  // namespace parser
