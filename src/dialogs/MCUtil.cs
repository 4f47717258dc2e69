using System;
using System.IO;
using System.Runtime.InteropServices;
using System.Text;

namespace Orv.Dialogs {

// Between .NET's strings and the exporter's 8-bit ones: in the system's code page on Windows, in
// UTF-8 elsewhere.
public static class MCUtil {
  static readonly Encoding s_encoding =
      Path.DirectorySeparatorChar == '\\' ? Encoding.Default : new UTF8Encoding(false);

  // NUL-terminated, to be freed with FreeAnsiString; null for null.
  public static IntPtr StringToAnsi(string text) {
    if (text == null) return IntPtr.Zero;
    byte[] bytes = s_encoding.GetBytes(text);
    IntPtr ansi = Marshal.AllocHGlobal(bytes.Length + 1);
    Marshal.Copy(bytes, 0, ansi, bytes.Length);
    Marshal.WriteByte(ansi, bytes.Length, 0);
    return ansi;
  }

  public static void FreeAnsiString(IntPtr ansi) {
    Marshal.FreeHGlobal(ansi);
  }

  // "" for null.
  public static string ToString(IntPtr ansi) {
    if (ansi == IntPtr.Zero) return "";
    int length = 0;
    while (Marshal.ReadByte(ansi, length) != 0) ++length;
    var bytes = new byte[length];
    Marshal.Copy(ansi, bytes, 0, length);
    return s_encoding.GetString(bytes);
  }
}
}
