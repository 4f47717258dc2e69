using System.Collections.Generic;
using System.Diagnostics;
using System.Threading;
using System.Windows.Forms;

namespace Orv.Dialogs {

// The one log window there is at a time.
static class LogWindow {
  const int TickMilliseconds = 10;

  // Lines of one severity.
  sealed class Block {
    public int Severity;
    public readonly List<string> Lines = new List<string>();
  }

  static DialogLog s_log;  // null: none is open
  static List<Block> s_waiting = new List<Block>();
  static bool s_takesLines;
  static readonly KeyFilter s_keys = new KeyFilter();
  static readonly Stopwatch s_sinceMessages = Stopwatch.StartNew();

  public static Form Current {
    get { return s_log != null && !s_log.IsDisposed ? s_log : null; }
  }

  public static int Open(int owner) {
    Close();
    Application.AddMessageFilter(s_keys);
    IWin32Window ownerWindow = OwnerWindow.From(owner);
    s_log = new DialogLog();
    s_takesLines = true;
    Look.Place(s_log, ownerWindow);
    s_log.Show(ownerWindow);
    Application.DoEvents();
    return 1;
  }

  // To be seen at the next tick: the more the text box holds, the longer it takes for a line.
  public static void Append(int severity, string text) {
    if (Current == null || !s_takesLines) return;
    int last = s_waiting.Count - 1;
    if (last < 0 || s_waiting[last].Severity != severity) {
      s_waiting.Add(new Block { Severity = severity });
      ++last;
    }
    s_waiting[last].Lines.Add(text);
    HandleMessages(false);
  }

  // After a failure the window takes no more lines, since the report of it would be the next one.
  public static void ShowLines() {
    List<Block> blocks = s_waiting;
    s_waiting = new List<Block>();
    if (Current == null || blocks.Count == 0) return;
    s_takesLines = false;
    foreach (Block block in blocks) s_log.Append(block.Severity, string.Join("\n", block.Lines));
    s_takesLines = true;
  }

  // Often called, so between two ticks it does nothing unless it is to wait.
  public static void HandleMessages(bool wait) {
    if (wait) Thread.Sleep(TickMilliseconds);
    if (s_sinceMessages.ElapsedMilliseconds < TickMilliseconds) return;
    ShowLines();
    Application.DoEvents();
    s_sinceMessages.Restart();
  }

  public static void Close() {
    Application.RemoveMessageFilter(s_keys);
    if (s_log != null) s_log.Dispose();
    s_log = null;
    s_waiting.Clear();
  }

  // Not every runtime's DoEvents looks for access keys, Enter and Escape before it hands a key to
  // the control that has the focus.
  sealed class KeyFilter : IMessageFilter {
    const int FirstKeyMessage = 0x100, LastKeyMessage = 0x109;

    public bool PreFilterMessage(ref Message message) {
      if (message.Msg < FirstKeyMessage || message.Msg > LastKeyMessage) return false;
      Control control = Control.FromChildHandle(message.HWnd);
      return control != null && control.FindForm() == Current &&
             control.PreProcessMessage(ref message);
    }
  }
}
}
