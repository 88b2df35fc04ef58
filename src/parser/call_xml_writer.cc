#include "parser/call_xml_writer.h"

#include "parser/document_file.h"
#include "parser/xml_paths.h"
#include "support/exceptions.h"

namespace parser {

namespace {

// A cursor that its line did not supply still holds kNoCursor, which prints as the -1 it
// stands for; a negative one ("#-5") prints with its sign; every other cursor number prints in
// full, 18446744073709551615 read from a line included.
void WriteCursor(OutputSink& out, CursorNo cursor, bool known, bool negative) {
  if (cursor == kNoCursor && !known) {
    out.Write("-1");
  } else if (negative) {
    out.WriteInt(static_cast<std::int64_t>(cursor));
  } else {
    out.WriteUnsigned(cursor);
  }
}

// c="%I64d" e="%I64d" p="%d" cr="%d" cu="%d" mis="%d" r="%d" dep="%d" og="%d" tim="%I64d"
void WriteCallAttributes(OutputSink& out, const CallRecord& call) {
  out.Write(" c=\"");
  out.WriteInt(call.c);
  out.Write("\" e=\"");
  out.WriteInt(call.e);
  out.Write("\" p=\"");
  out.WriteInt(call.p);
  out.Write("\" cr=\"");
  out.WriteInt(call.cr);
  out.Write("\" cu=\"");
  out.WriteInt(call.cu);
  out.Write("\" mis=\"");
  out.WriteInt(call.mis);
  out.Write("\" r=\"");
  out.WriteInt(call.r);
  out.Write("\" dep=\"");
  out.WriteInt(call.dep);
  out.Write("\" og=\"");
  out.WriteInt(call.og);
  out.Write("\" tim=\"");
  out.WriteInt(call.tim);
  out.Put('"');
}

void WriteCalls(OutputSink& out, const std::vector<CallRecord>& calls, std::string_view section,
                std::string_view element) {
  if (calls.empty()) return;
  out.Write("<");
  out.Write(section);
  out.Write(">\n");
  for (const CallRecord& call : calls) {
    out.Write("<");
    out.Write(element);
    WriteCallAttributes(out, call);
    out.Write("></");
    out.Write(element);
    out.Write(">\n");
  }
  out.Write("</");
  out.Write(section);
  out.Write(">\n");
}

void WriteExecCalls(OutputSink& out, const std::vector<ExecCallRecord>& calls) {
  if (calls.empty()) return;
  out.Write("<EXEC>\n");
  for (const ExecCallRecord& call : calls) {
    out.Write("<EXECDATA");
    WriteCallAttributes(out, call);
    out.Write(" exebnd=\"");
    out.WriteInt(call.exebnd);
    out.Write("\"></EXECDATA>\n");
  }
  out.Write("</EXEC>\n");
}

void WriteBind(OutputSink& out, const BindRecord& bind) {
  out.Write("<BINDDATA bind=\"");
  out.WriteInt(bind.bind);
  out.Write("\" dty=\"");
  out.WriteInt(bind.dty);
  out.Write("\" mxl=\"");
  out.WriteInt(bind.mxl);
  out.Write("\" pl=\"");
  out.WriteInt(bind.pl);
  out.Write("\" mal=\"");
  out.WriteInt(bind.mal);
  out.Write("\" scl=\"");
  out.WriteInt(bind.scl);
  out.Write("\" pre=\"");
  out.WriteInt(bind.pre);
  out.Write("\" oacflg=\"");
  out.WriteInt(bind.oacflg);
  out.Write("\" oacflg2=\"");
  out.WriteInt(bind.oacfl2);
  out.Write("\" size=\"");
  out.WriteInt(bind.size);
  out.Write("\" offset=\"");
  out.WriteInt(bind.offset);
  out.Write("\" bfp=\"");
  out.WriteXmlEscaped(bind.bfp);
  out.Write("\" bln=\"");
  out.WriteInt(bind.bln);
  out.Write("\" avl=\"");
  out.WriteInt(bind.avl);
  out.Write("\" flg=\"");
  out.WriteInt(bind.flg);
  out.Write("\" value=\"");
  out.WriteXmlEscaped(bind.value);
  out.Write("\" exebnd=\"");
  out.WriteInt(bind.bind_set);
  out.Write("\"></BINDDATA>\n");
}

void WriteStat(OutputSink& out, const StatRecord& stat) {
  WriteStatDataStart(out, stat);
  out.Write("\"></STATDATA>\n");
}

void WriteWait(OutputSink& out, const WaitRecord& wait) {
  out.Write("<WAITDATA nam=\"");
  out.WriteXmlEscaped(wait.nam);
  out.Write("\" ela=\"");
  out.WriteInt(wait.ela);
  out.Write("\" p1=\"");
  out.WriteInt(wait.p1);
  out.Write("\" p2=\"");
  out.WriteInt(wait.p2);
  out.Write("\" p3=\"");
  out.WriteInt(wait.p3);
  out.Write("\" tim=\"");
  out.WriteInt(wait.tim);
  out.Write("\"></WAITDATA>\n");
}

void WriteHeader(OutputSink& out, const ParseInCursorRecord& header) {
  out.Write("<PARSEINCURSOR cursor=\"");
  WriteCursor(out, header.cursor, header.cursor_known, header.cursor_negative);
  out.Write("\" len=\"");
  out.WriteInt(header.len);
  out.Write("\" dep=\"");
  out.WriteInt(header.dep);
  out.Write("\" uid=\"");
  out.WriteInt(header.uid);
  out.Write("\" oct=\"");
  out.WriteInt(header.oct);
  out.Write("\" lid=\"");
  out.WriteInt(header.lid);
  out.Write("\" tim=\"");
  out.WriteInt(header.tim);
  out.Write("\" hv=\"");
  out.WriteInt(header.hv);
  out.Write("\" ad=\"");
  out.WriteXmlEscaped(header.ad);
  out.Write("\"></PARSEINCURSOR>\n");
}

void WriteParseError(OutputSink& out, const ParseErrorRecord& error) {
  out.Write("<PARSEERRORDATA len=\"");
  out.WriteInt(error.len);
  out.Write("\" dep=\"");
  out.WriteInt(error.dep);
  out.Write("\" uid=\"");
  out.WriteInt(error.uid);
  out.Write("\" oct=\"");
  out.WriteInt(error.oct);
  out.Write("\" lid=\"");
  out.WriteInt(error.lid);
  out.Write("\" tim=\"");
  out.WriteInt(error.tim);
  out.Write("\" err=\"");
  out.WriteInt(error.err);
  out.Write("\"/>");
}

template <typename Record, typename WriteOne>
void WriteSection(OutputSink& out, const std::vector<Record>& records, std::string_view open,
                  std::string_view close, WriteOne write_one) {
  if (records.empty()) return;
  out.Write(open);
  for (const Record& record : records) write_one(out, record);
  out.Write(close);
}

void WriteStatement(OutputSink& out, const TraceStatement& statement,
                    const DocumentContext& context) {
  out.Write("<STATEMENT>\n<CURSORNO cursor=\"");
  WriteCursor(out, statement.cursor, statement.cursor_known, statement.cursor_negative);
  out.Write("\"></CURSORNO>\n<SQL>");
  if (statement.is_parse_error) {
    out.WriteCdata(statement.parse_error.text);
    out.Write("</SQL>");
    WriteParseError(out, statement.parse_error);
    out.Write("</STATEMENT>\n");
    return;
  }
  out.WriteCdata(statement.header.text);
  out.Write("</SQL>");
  WriteHeader(out, statement.header);
  WriteCalls(out, statement.parse_calls, "PARSE", "PARSEDATA");
  if (!context.skip_binds) WriteSection(out, statement.binds, "<BIND>\n", "</BIND>\n", WriteBind);
  WriteExecCalls(out, statement.exec_calls);
  WriteCalls(out, statement.fetch_calls, "FETCH", "FETCHDATA");
  WriteSection(out, statement.stats, "<STAT>\n", "</STAT>\n", WriteStat);
  if (!context.skip_waits) WriteSection(out, statement.waits, "<WAIT>\n", "</WAIT>\n", WriteWait);
  out.Write("</STATEMENT>\n");
}

}  // namespace

void WriteStatDataStart(OutputSink& out, const StatRecord& stat) {
  out.Write("<STATDATA id=\"");
  out.WriteInt(stat.id);
  out.Write("\" cnt=\"");
  out.WriteInt(stat.cnt);
  out.Write("\" pid=\"");
  out.WriteInt(stat.pid);
  out.Write("\" pos=\"");
  out.WriteInt(stat.pos);
  out.Write("\" obj=\"");
  out.WriteInt(stat.obj);
  out.Write("\" op=\"");
  out.WriteXmlEscaped(stat.op);
}

void WriteCallXmlStart(OutputSink& out, const DocumentContext& context) {
  out.Write("<?xml version=\"1.0\" encoding=\"UTF-8\"?><STATEMENTS tim=\"");
  // As the trace line had it, line end included; escaped, so that no byte of it can end the
  // attribute (a clean timestamp is written unchanged).
  out.WriteXmlEscaped(context.session_timestamp);
  out.Write("\" FirstParseInCursorTim=\"");
  out.WriteInt(context.first_cursor_time);
  out.Write("\">\n");
}

void WriteCallXmlStatement(OutputSink& out, const TraceStatement& statement,
                           const DocumentContext& context) {
  // A parse error's header is empty (dep -1), so top-level-only leaves parse errors out too.
  if (context.top_level_only && statement.header.dep != 0) return;
  WriteStatement(out, statement, context);
}

void WriteCallXmlEnd(OutputSink& out) {
  out.Write("</STATEMENTS>\n");
}

void WriteCallXml(const StatementList& closed, const DocumentContext& context, OutputSink& out) {
  WriteCallXmlStart(out, context);
  for (const auto& statement : closed) WriteCallXmlStatement(out, *statement, context);
  WriteCallXmlEnd(out);
}

void WriteCallXml(const StatementList& closed, const DocumentContext& context,
                  std::string file_name) {
  OutputSink out;
  const std::string path = CallXmlPath(file_name, context.output_directory);
  if (!out.OpenFile(path)) {
    throw exceptions::ExceptionBase("TraceParser", "CTraceParser::CreateXML", "CreateXML",
                                    "Trace parser failed to create output XML file!");
  }
  WriteCallXml(closed, context, out);
  FinishDocument(out, path, "CreateXML");
}

}  // namespace parser
