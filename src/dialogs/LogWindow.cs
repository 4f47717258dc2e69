using System.Diagnostics;
using System.Threading;
using System.Windows.Forms;

namespace Orv.Dialogs {

// The one log window there is at a time.
static class LogWindow {
  const int TickMilliseconds = 10;

  static DialogLog s_log;  // null: none is open
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
    Look.Place(s_log, ownerWindow);
    s_log.Show(ownerWindow);
    Application.DoEvents();
    return 1;
  }

  public static void Append(int severity, string text) {
    if (Current == null) return;
    s_log.Append(severity, text);
    HandleMessages(false);
  }

  // Often called, so between two ticks it does nothing unless it is to wait.
  public static void HandleMessages(bool wait) {
    if (wait) Thread.Sleep(TickMilliseconds);
    if (s_sinceMessages.ElapsedMilliseconds < TickMilliseconds) return;
    Application.DoEvents();
    s_sinceMessages.Restart();
  }

  public static void Close() {
    Application.RemoveMessageFilter(s_keys);
    if (s_log != null) s_log.Dispose();
    s_log = null;
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
