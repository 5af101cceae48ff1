// The language has no arguments by reference: what is edited stays in the window, and nothing breaks.
var editor = new ActiveXObject("brvSQLEditor.clsSQLEditor");
var sql = "select 1";
editor.Constructor(null);
editor.Display(sql);
WScript.Echo("[" + sql + "]");
editor.Display(sql);
WScript.Echo("done");
