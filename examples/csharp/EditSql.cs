// Opens the SQL Editor over a connection object that is written here in C#, and prints the SQL that comes back.
//   csc /r:Microsoft.CSharp.dll EditSql.cs        EditSql ["SQL"]
// Build it for x86 or x64 as your add-in is. The project's tests compile it only: there is no .NET for Windows where they run.

using System;
using System.Collections;
using System.Runtime.InteropServices;
using System.Text.RegularExpressions;

/// The least that a connection object has: the editor asks for these members by name.
[ComVisible(true), ClassInterface(ClassInterfaceType.AutoDispatch)]
public class Connection
{
    public bool Connected { get { return true; } }
    public string CurrentCatalog { get { return "shop"; } }
    public string UserName { get { return Environment.UserName; } }
    public int DBType { get { return 0; } }
    public string SchemaTerm { get { return "Schema"; } }
    public Dictionary Dictionary { get { return new Dictionary(); } }

    public string DBTypeName(int type) { return "An example in C#"; }
    public string FormatName(string name) { return Regex.IsMatch(name, "^[a-z_]+$") ? name : "\"" + name + "\""; }
}

[ComVisible(true), ClassInterface(ClassInterfaceType.AutoDispatch)]
public class Dictionary
{
    public ArrayList Schemas(object name, bool system) { return new ArrayList { "shop" }; }

    public ArrayList Objects(int type, object schema, object name, object system)
    {
        return type == 1 ? new ArrayList { "customer", "order item" } : new ArrayList();
    }

    // A column is a collection of properties, a property an array: name, value, attribute.
    public ArrayList Columns(object schema, object table)
    {
        return new ArrayList
        {
            new ArrayList { new object[] { "COLUMN_NAME", "id", 0 }, new object[] { "TYPE_NAME", "INTEGER", 0 } }
        };
    }

    public string DataTypeDesc(int type, int attribute) { return type.ToString(); }
}

public static class EditSql
{
    [STAThread] // the window needs a single-threaded apartment
    public static void Main(string[] arguments)
    {
        string sql = arguments.Length > 0 ? arguments[0] : "SELECT 1";
        object connection = new Connection();
        Type type = Type.GetTypeFromProgID("brvSQLEditor.clsSQLEditor", true);
        dynamic editor = Activator.CreateInstance(type);
        try
        {
            editor.Constructor(ref connection);
            editor.Display(ref sql);
            editor.Destructor();
        }
        finally
        {
            Marshal.ReleaseComObject(editor);
        }
        Console.WriteLine(sql);
    }
}
