// The border to native code. DialogTable.h has the same records, field by field.

using System;
using System.Globalization;
using System.Reflection;
using System.Runtime.InteropServices;
using System.Windows.Forms;

[assembly: AssemblyTitle("Windows of the Velmor exporter")]

namespace Orv.Dialogs {

[StructLayout(LayoutKind.Sequential)]
public struct OptionsRecord {
  public int ExportGeometry;
  public int ExportAnimation;
  public int ForceTxtOverwrite;
  public int CollectTextures;
  public int UseDefaultColors;
  public int NormalMapFlipGreen;
  public int AnimationStartFrame;
  public int AnimationEndFrame;
  public int ExportStartFrame;
  public int ExportEndFrame;
  public IntPtr EventFileName;
  public IntPtr NewEventFileName;
}

delegate void Procedure();
delegate void TextProcedure(IntPtr text);
delegate int OwnedWindow(int owner);
delegate int OptionsWindow(int owner, IntPtr options);
delegate void NumberProcedure(int number);
delegate void LogProcedure(int severity, IntPtr text);
delegate int QuestionWindow(int kind, IntPtr caption, IntPtr text);
delegate int MessageWindow(IntPtr text, IntPtr caption, int yesNo, int icon);
delegate IntPtr TextFunction();

[StructLayout(LayoutKind.Sequential)]
struct DialogTable {
  public int Size;
  public Procedure LogWindowSignalsClose;
  public TextProcedure ReportException;
  public OptionsWindow ShowOptions;
  public OwnedWindow OpenLog;
  public LogProcedure AppendToLog;
  public Procedure CloseLog;
  public NumberProcedure HandleMessages;
  public QuestionWindow MessageBoxExt;
  public MessageWindow ShowMessageBox;
  public TextProcedure ShowAbout;
  public TextFunction PickEventFile;
  public TextProcedure FreeAnsiString;
  public Procedure ReleaseResources;
}

public static class Bridge {
  const int Ready = 0, NoDisplay = 1, OtherVersion = 2;

  static DialogTable s_table;  // keeps its delegates alive for native code
  static bool s_isReporting;

  // Fills the table at the address, a decimal number, and says whether windows can be shown.
  public static int Start(string tableAddress) {
    var address = new IntPtr(long.Parse(tableAddress, CultureInfo.InvariantCulture));
    if (Marshal.ReadInt32(address) != Marshal.SizeOf(typeof(DialogTable))) return OtherVersion;
    if (!CanShowWindows()) return NoDisplay;
    s_table = (DialogTable)Marshal.PtrToStructure(address, typeof(DialogTable));
    s_table.ShowOptions = (owner, options) => Guard(0, () => ShowOptions(owner, options));
    s_table.OpenLog = owner => Guard(0, () => LogWindow.Open(owner));
    s_table.AppendToLog =
        (severity, text) => Guard(() => LogWindow.Append(severity, MCUtil.ToString(text)));
    s_table.CloseLog = () => Guard(LogWindow.Close);
    s_table.HandleMessages = wait => Guard(() => LogWindow.HandleMessages(wait != 0));
    s_table.MessageBoxExt = (kind, caption, text) => Guard(0, () =>
        (int)Windows.AskExtended(kind, MCUtil.ToString(caption), MCUtil.ToString(text)));
    s_table.ShowMessageBox = (text, caption, yesNo, icon) => Guard(0, () =>
        Windows.ShowMessageBox(MCUtil.ToString(text), MCUtil.ToString(caption), yesNo != 0, icon)
            ? 1 : 0);
    s_table.ShowAbout = copyright => Guard(() => Windows.ShowAbout(MCUtil.ToString(copyright)));
    s_table.PickEventFile =
        () => Guard(IntPtr.Zero, () => MCUtil.StringToAnsi(Windows.PickEventFile()));
    s_table.FreeAnsiString = MCUtil.FreeAnsiString;
    s_table.ReleaseResources = () => Guard(ReleaseResources);
    Marshal.StructureToPtr(s_table, address, false);
    return Ready;
  }

  // Runs what native code or the toolkit has called, where an exception must not get out.
  public static T Guard<T>(T fallback, Func<T> body) {
    try {
      return body();
    } catch (Exception exception) {
      Report(exception);
      return fallback;
    }
  }

  public static void Guard(Action body) {
    Guard(0, () => { body(); return 0; });
  }

  public static void SignalLogClosed() {
    if (s_table.LogWindowSignalsClose != null) s_table.LogWindowSignalsClose();
  }

  static int ShowOptions(int owner, IntPtr address) {
    var options = (OptionsRecord)Marshal.PtrToStructure(address, typeof(OptionsRecord));
    if (!Windows.ShowOptions(owner, ref options)) return 0;
    Marshal.StructureToPtr(options, address, false);
    return 1;
  }

  // The windows of one export are garbage at its end, and large enough not to wait for the next
  // time the collector looks.
  static void ReleaseResources() {
    LogWindow.Close();
    GC.Collect();
    GC.WaitForPendingFinalizers();
    GC.Collect();
  }

  // Native code puts it into the log. What happens on the way there has no log to go to.
  static void Report(Exception exception) {
    if (s_table.ReportException == null) throw exception;
    if (s_isReporting) return;
    s_isReporting = true;
    try {
      exception = exception.GetBaseException();
      IntPtr text = MCUtil.StringToAnsi(exception.GetType() + ": " + exception.Message);
      s_table.ReportException(text);
      MCUtil.FreeAnsiString(text);
    } finally {
      s_isReporting = false;
    }
  }

  // Without an X server the toolkit throws the first time it is asked for anything.
  static bool CanShowWindows() {
    try {
      return Control.MousePosition.X >= int.MinValue;
    } catch (TypeInitializationException) {
      return false;
    }
  }
}
}
