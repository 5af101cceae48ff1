// A host in JScript: its database is an object with plain values and functions.
var dictionary = { Schemas: function (name, system) { return null; } };
var database = {
    Connected: true, CurrentCatalog: "Sales", UserName: "scott", DBType: 8, SchemaTerm: "", Dictionary: dictionary,
    DBTypeName: function (code) { return "SQL Server (" + code + ") of JScript"; }
};
var editor = new ActiveXObject("brvSQLEditor.clsSQLEditor");
editor.Constructor(database);
editor.Display("select 1\r\nfrom dual");
WScript.Echo("shown once");
editor.Display("second");
editor.Destructor();
WScript.Echo("done");
