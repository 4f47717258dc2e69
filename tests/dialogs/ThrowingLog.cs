// Stands for the log window in an assembly whose windows fail.

using System;
using System.Windows.Forms;

namespace Orv.Dialogs {

public sealed class DialogLog : Form {
  public DialogLog() { Text = "Velmor Exporter Log"; }

  public void Append(int severity, string text) {
    throw new InvalidOperationException("thrown on purpose");
  }

  protected override void OnHandleDestroyed(EventArgs e) {
    base.OnHandleDestroyed(e);
    Bridge.SignalLogClosed();
  }
}
}
