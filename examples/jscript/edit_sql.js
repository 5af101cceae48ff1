// Opens the SQL Editor over a database that is written here in JScript.
//   cscript //nologo edit_sql.js ["SQL"]
// JScript passes texts by value, so what the user has edited cannot come back to this variable: the user takes it along by the
// clipboard or a file. edit_sql.wsf shows how a few lines of VBScript bring it back.

// The least that a connection object has. An add-in hands over its own.
var database = {
    Connected: true,
    CurrentCatalog: "shop",
    UserName: "",
    DBType: 0,
    SchemaTerm: "Schema",
    Dictionary: {
        Schemas: function (name, system) { return list(["shop"]); },
        Objects: function (type, schema, name, system) { return list(type === 1 ? ["customer", "order item"] : []); },
        Columns: function (schema, table) { return list([]); },
        DataTypeDesc: function (type, attribute) { return String(type); }
    },
    DBTypeName: function (type) { return "An example in JScript"; },
    FormatName: function (name) { return /^[a-z_]+$/.test(name) ? name : '"' + name + '"'; }
};

// A collection: Count and Item, from 0 here.
function list(items) {
    return {
        Count: items.length,
        Item: function (position) {
            if (position >= items.length) throw new Error("There is no item " + position);
            return items[position];
        }
    };
}

function create() {
    try {
        return new ActiveXObject("brvSQLEditor.clsSQLEditor");
    } catch (error) {
        WScript.Echo((error.number & 0xFFFF) === 429
            ? "brvSQLEditor is not registered for programs of this width."
            : "brvSQLEditor cannot be made: " + error.message);
        WScript.Quit(1);
    }
}

var editor = create();
try {
    editor.Constructor(database);
    editor.Display(WScript.Arguments.length > 0 ? WScript.Arguments(0) : "SELECT 1");
} finally {
    editor.Destructor();
}
WScript.Echo("The window was closed.");
