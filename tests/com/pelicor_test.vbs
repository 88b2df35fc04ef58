' The COM server from a script host as the desktop host's scripts use it: CreateObject by ProgID,
' outputs into script variables (VARIANTs by reference, holding the last call's strings), numbers
' and Null as VBScript passes them. Usage: cscript //nologo pelicor_test.vbs FIXTURES SCRATCH
' (Windows paths, SCRATCH an empty folder). Ends with the line "N passed, N failed".
Option Explicit
Dim fso, fixtures, scratch, work, o, r, msg, xml, passed, failed
passed = 0
failed = 0

Sub Check(ok, what)
  If ok Then
    passed = passed + 1
  Else
    failed = failed + 1
    WScript.Echo "FAILED: " & what
  End If
End Sub

Sub CheckCall(what, gotR, wantR, gotMsg, wantMsg)
  Check gotR = wantR And gotMsg = wantMsg, what & ": got " & gotR & " """ & gotMsg & """"
End Sub

Function ReadAll(path)
  ReadAll = "(none)"
  If fso.FileExists(path) Then
    If fso.GetFile(path).Size = 0 Then
      ReadAll = ""
    Else
      ReadAll = fso.OpenTextFile(path, 1).ReadAll()
    End If
  End If
End Function

Set fso = CreateObject("Scripting.FileSystemObject")
fixtures = WScript.Arguments(0)
scratch = WScript.Arguments(1)
work = scratch & "\work"
fso.CreateFolder work
fso.CopyFile fixtures & "\orcl_ora_4242.trc", "orcl_ora_4242.trc"
Dim golden
golden = Replace(ReadAll(fixtures & "\orcl_ora_4242.calls.xml"), vbLf, vbCrLf)

Set o = CreateObject("Pelicor.CPelicor")
r = o.SetWorkingDir(work, msg)
CheckCall "SetWorkingDir", r, 0, msg, "OK"

' The trace in the current directory; the call-by-call document goes to the working directory.
r = o.ParseFile("orcl_ora_4242.trc", 0, 0, 0, xml, msg)
CheckCall "ParseFile", r, 0, msg, "OK"
Check xml = "orcl_ora_4242.xml", "outputXML: " & xml
Check ReadAll(work & "\orcl_ora_4242.xml") = golden, "the call-by-call document"

r = o.ParseFile("trace.log", 0, 0, 0, xml, msg)
CheckCall "ParseFile trace.log", r, 1, msg, "Filename does not contain '.trc' !"
Check xml = "", "outputXML after a failure: " & xml

' Numbers as scripts hold them: a string of digits, a Long, a Boolean-sized Integer.
r = o.SetSortOption("1", CLng(0), CInt(1), 1, msg)
CheckCall "SetSortOption", r, 0, msg, "OK"

' Null is a missing argument.
r = o.NfsValidation(scratch, Null, msg)
CheckCall "NfsValidation Null", r, 1, msg, "PID is empty or NULL!"

' The batch parse answers MORE until the trace is read.
r = o.ParseFileEx("orcl_ora_4242.trc", 1, 0, xml, msg)
CheckCall "ParseFileEx", r, 0, msg, "MORE"
Dim calls
calls = 0
Do
  r = o.ParseFileEx("orcl_ora_4242.trc", 50, 0, xml, msg)
  calls = calls + 1
Loop While msg = "MORE" And calls < 5
CheckCall "ParseFileEx to the end", r, 0, msg, "OK"

Set o = Nothing
WScript.Echo passed & " passed, " & failed & " failed"
If failed > 0 Then WScript.Quit 1
WScript.Quit 0
