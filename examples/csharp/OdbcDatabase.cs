// A connection object for the SQL Editor over ODBC, with what the .NET Framework brings. The editor asks for these members by name.

using System;
using System.Collections;
using System.Data;
using System.Data.Odbc;
using System.Runtime.InteropServices;

[ComVisible(true), ClassInterface(ClassInterfaceType.AutoDispatch)]
public class OdbcDatabase : IDisposable
{
    private readonly OdbcConnection connection;

    public OdbcDatabase(string connectionString)
    {
        connection = new OdbcConnection(connectionString);
        connection.Open();
    }

    public void Dispose() { connection.Dispose(); }

    public bool Connected { get { return connection.State == ConnectionState.Open; } }
    public string CurrentCatalog { get { return ""; } }
    public string UserName { get { return ""; } }
    // What statements look like, here "LIMIT": see the table in docs\hosting.md.
    public int DBType { get { return 17; } }
    public string SchemaTerm { get { return ""; } }
    public OdbcDictionary Dictionary { get { return new OdbcDictionary(connection); } }

    public string DBTypeName(int type) { return connection.Driver + " " + connection.ServerVersion; }

    // A name in quotes is right in every database: the dictionary gives it as it was created.
    public string FormatName(string name) { return "\"" + name.Replace("\"", "\"\"") + "\""; }
}

[ComVisible(true), ClassInterface(ClassInterfaceType.AutoDispatch)]
public class OdbcDictionary
{
    private readonly OdbcConnection connection;

    internal OdbcDictionary(OdbcConnection connection) { this.connection = connection; }

    // No schemas: "Current Schema" stands for them. Null alone would be Empty, which is no object.
    public object Schemas(object name, bool system) { return new DispatchWrapper(null); }

    public ArrayList Objects(int type, object schema, object name, object system)
    {
        var names = new ArrayList();
        foreach (DataRow row in connection.GetSchema(type == 2 ? "Views" : "Tables").Rows)
        {
            // The first of the two also lists what the database keeps for itself.
            if (type == 2 || (string)row["TABLE_TYPE"] == "TABLE") names.Add((string)row["TABLE_NAME"]);
        }
        names.Sort(StringComparer.Ordinal);
        return names;
    }

    // A column is a collection of properties, a property an array: name, value, attribute.
    public ArrayList Columns(object schema, object table)
    {
        var columns = new ArrayList();
        foreach (DataRow row in connection.GetSchema("Columns", new string[] { null, null, (string)table }).Rows)
        {
            columns.Add(new ArrayList
            {
                new object[] { "COLUMN_NAME", (string)row["COLUMN_NAME"], 0 },
                new object[] { "TYPE_NAME", (string)row["TYPE_NAME"], 0 },
                new object[] { "IS_NULLABLE", Convert.ToString(row["IS_NULLABLE"]), 0 }
            });
        }
        return columns;
    }

    public string DataTypeDesc(int type, int attribute) { return "Type " + type; }
}
