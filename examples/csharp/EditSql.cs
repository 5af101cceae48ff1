// Opens the SQL Editor over a database and prints the SQL that comes back.
//   csc /r:Microsoft.CSharp.dll EditSql.cs OdbcDatabase.cs        EditSql ["ODBC connection string" ["SQL"]]
// Build it for x86 or x64 as your add-in is, with the compiler of the .NET Framework (C:\Windows\Microsoft.NET\Framework\v4.0.30319). The
// project's tests compile it only: there is no .NET for Windows where they run.

using System;
using System.Runtime.InteropServices;

public static class EditSql
{
    private const int InvalidClassString = unchecked((int)0x800401F3); // the name is unknown
    private const int NotRegistered = unchecked((int)0x80040154);      // for programs of the other width, perhaps

    [STAThread] // the window needs a single-threaded apartment
    public static int Main(string[] arguments)
    {
        OdbcDatabase database = null;
        try
        {
            if (arguments.Length > 0) database = new OdbcDatabase(arguments[0]);
            Console.WriteLine(Edited(arguments.Length > 1 ? arguments[1] : "SELECT 1", database));
            return 0;
        }
        catch (COMException error)
        {
            if (error.ErrorCode == InvalidClassString || error.ErrorCode == NotRegistered)
                Console.Error.WriteLine("brvSQLEditor is not registered for programs of " + 8 * IntPtr.Size + " bits.");
            else
                Console.Error.WriteLine("The SQL Editor failed: " + error.Message);
            return 1;
        }
        catch (System.Data.Odbc.OdbcException error)
        {
            Console.Error.WriteLine("The database cannot be used: " + error.Message);
            return 1;
        }
        finally
        {
            if (database != null) database.Dispose();
        }
    }

    /// <param name="connection">Your connection object, or null.</param>
    private static string Edited(string sql, object connection)
    {
        dynamic editor = Activator.CreateInstance(Type.GetTypeFromProgID("brvSQLEditor.clsSQLEditor", true));
        try
        {
            editor.Constructor(ref connection);
            editor.Display(ref sql);
            return sql;
        }
        finally
        {
            try { editor.Destructor(); }
            finally { Marshal.ReleaseComObject(editor); }
        }
    }
}
