using System;
using System.Runtime.InteropServices;
using System.Windows.Forms;

namespace Orv.Dialogs {

// The modal windows that native code asks for.
static class Windows {
  // True when the user starts the export; the record is then as the user has left it.
  public static bool ShowOptions(int owner, ref OptionsRecord options) {
    using (var dialog = new DialogOptions()) {
      dialog.Take(options);
      if (ShowModal(dialog, OwnerWindow.From(owner)) != DialogResult.OK) return false;
      dialog.PutInto(ref options);
      return true;
    }
  }

  // kind: which buttons; whoever closes the box without a button has cancelled.
  public static ButtonResult AskExtended(int kind, string caption, string text) {
    var buttons = kind == 0 ? ButtonSet.YesYesAllNoNoAllCancel : ButtonSet.YesYesAllNoNoAll;
    using (var dialog = new DialogMessageBox(buttons, IconKind.Warning, text)) {
      dialog.Text = caption;
      LogWindow.ShowLines();
      ShowModal(dialog, LogWindow.Current);
      return dialog.Result;
    }
  }

  // icon: 0 error, 1 warning, 2 information, 3 question. True for Yes.
  public static bool ShowMessageBox(string text, string caption, bool yesNo, int icon) {
    MessageBoxIcon[] icons = { MessageBoxIcon.Error, MessageBoxIcon.Warning,
                               MessageBoxIcon.Information, MessageBoxIcon.Question };
    var buttons = yesNo ? MessageBoxButtons.YesNo : MessageBoxButtons.OK;
    LogWindow.ShowLines();
    return MessageBox.Show(text, caption, buttons, icons[icon]) == DialogResult.Yes;
  }

  public static void ShowAbout(string copyright) {
    using (var dialog = new DialogAbout(copyright)) ShowModal(dialog, null);
  }

  public static string PickEventFile() {
    return EventFilePicker.Pick(null, "Pick an event file", "Event files|*.evt", "");
  }

  static DialogResult ShowModal(Form dialog, IWin32Window owner) {
    Look.Place(dialog, owner);
    return dialog.ShowDialog(owner);
  }
}
}
