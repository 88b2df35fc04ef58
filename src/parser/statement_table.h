// The statements of one parse: the open list (cursor still open, in order of opening) and the
// closed list (in order of closing; what the writers read), with the lookup of a statement by
// cursor number behind a one-entry cache.
//
// Cursor numbers are looked up through a hash index of the open list (a shared-server trace or a
// cursor leak keeps a million cursors open at once). The index holds, for each cursor, the first
// open statement with it; a second open statement with the same number (which a parse only makes
// when statements are put in by hand) is counted, and looked for in the list when the first one
// closes, so the answers are those of a search of the open list from its front.
//
// Merging identical SQL looks closed statements up by their text through an index of its own,
// built on the first look-up (a parse that does not merge never builds it) and kept as statements
// close and reopen. Handing out the closed list for changes (sorting, taking statements out)
// drops it; the next look-up builds it again from the list, so the answer is always the first
// statement of the list with that text.
//
// The cache is deliberately not cleared when statements close: after a close, lines for the
// cached cursor still go to that statement, now in the closed list. Only emptying the closed
// list forgets a cached statement that it destroys.
#ifndef PELICOR_PARSER_STATEMENT_TABLE_H_
#define PELICOR_PARSER_STATEMENT_TABLE_H_

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string_view>
#include <unordered_map>

#include "parser/trace_statement.h"

namespace parser {

class StatementTable {
 public:
  // The statement for `cursor`: the cached one when the cursor is the cached cursor, else the
  // first open statement with that cursor (which then becomes the cached one), else null.
  TraceStatement* ForCursor(CursorNo cursor);
  void Cache(CursorNo cursor, TraceStatement* statement);
  // True when `statement` is the cached one: closed or not, it may still receive lines.
  bool IsCached(const TraceStatement* statement) const {
    return cache_set_ && cached_ == statement;
  }

  // A new statement with the next sequence number, appended to the open list.
  TraceStatement* OpenNew(CursorNo cursor);

  // Moves the first open statement with `cursor` to the end of the closed list.
  void CloseCursor(CursorNo cursor);
  // Moves up to `n` statements from the front of the open list to the end of the closed list
  // (none when n <= 0) and returns how many stay open.
  std::size_t CloseFirst(std::int64_t n);
  void CloseAll();

  // Moves the first closed statement whose header SQL text equals `text` to the end of the open
  // list and returns it; null when there is none.
  TraceStatement* ReopenBySqlText(std::string_view text);
  // Gives the last open statement (the one just reopened) the cursor number `cursor`.
  void RenumberLast(CursorNo cursor);

  // Destroys every closed statement.
  void ClearClosed();

  StatementList& open() { return open_; }
  const StatementList& open() const { return open_; }
  // The closed list, for changes: the index by SQL text is built anew before its next use.
  StatementList& closed() {
    if (closed_by_text_built_) {  // a parse that streams its statements asks for it every line
      closed_by_text_.clear();
      closed_by_text_built_ = false;
    }
    return closed_;
  }
  const StatementList& closed() const { return closed_; }
  std::int64_t statements_made() const { return counter_; }

 private:
  // Appends the last open statement to the index; takes one out of it before it leaves the list.
  void IndexLast();
  void Unindex(StatementList::iterator at);
  void MoveToClosed(StatementList::iterator at);
  void IndexClosedByText(StatementList::iterator at);

  StatementList open_;
  std::unordered_map<CursorNo, StatementList::iterator> first_open_;
  std::size_t unindexed_ = 0;  // open statements behind another one with the same cursor
  StatementList closed_;
  // The closed statements of each SQL text, in list order; the keys view the first one's text.
  std::unordered_map<std::string_view, std::deque<StatementList::iterator>> closed_by_text_;
  bool closed_by_text_built_ = false;
  bool cache_set_ = false;
  CursorNo cached_cursor_ = 0;
  TraceStatement* cached_ = nullptr;
  std::int64_t counter_ = 0;
};

}  // namespace parser

#endif  // PELICOR_PARSER_STATEMENT_TABLE_H_
