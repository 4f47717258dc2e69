using System.IO;
using System.Windows.Forms;

namespace Orv.Dialogs {

static class EventFilePicker {
  public const string AllFilters =
      "Event files (*.evt)|*.evt|Text files (*.txt)|*.txt|All files (*.*)|*.*";

  // The full name of an existing file; null when the user cancels. current: where to begin.
  public static string Pick(IWin32Window owner, string title, string filter, string current) {
    using (var picker = new OpenFileDialog()) {
      picker.Title = title;
      picker.Filter = filter;
      picker.DefaultExt = "evt";
      picker.CheckPathExists = true;
      picker.CheckFileExists = true;
      picker.ShowReadOnly = false;
      picker.RestoreDirectory = true;
      if (File.Exists(current)) {
        picker.InitialDirectory = Path.GetDirectoryName(Path.GetFullPath(current));
        picker.FileName = Path.GetFileName(current);
      }
      return picker.ShowDialog(owner) == DialogResult.OK ? picker.FileName : null;
    }
  }
}
}
