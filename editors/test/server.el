;;; server.el --- Task files in Emacs with eglot  -*- lexical-binding: t; -*-

;; What comes of it is written to the file ANSWERS as JSON.

;;; Code:

(require 'json)
(require 'eglot)
(require 'flymake)
(require 'mq-mode)

(defun server-test--wait (what test)
  "Wait until TEST returns a value, and return it; WHAT is missing when it does not."
  (with-timeout (10 (error "No %s" what))
    (let (value)
      (while (not (setq value (funcall test)))
        (accept-process-output nil 0.02))
      value)))

(defun server-test--open (name)
  "Open the file NAME of the folder FOLDER and connect it."
  (find-file (expand-file-name name (getenv "FOLDER")))
  (apply #'eglot (eglot--guess-contact))
  (server-test--wait "server" #'eglot-current-server))

(defun server-test--diagnostics ()
  "The diagnostics of the buffer by their lines."
  (mapcar (lambda (diagnostic)
            (vector (line-number-at-pos (flymake-diagnostic-beg diagnostic))
                    (flymake-diagnostic-text diagnostic)))
          (sort (flymake-diagnostics)
                (lambda (a b) (< (flymake-diagnostic-beg a) (flymake-diagnostic-beg b))))))

(setq eglot-sync-connect t
      eglot-confirm-server-initiated-edits nil
      xref-prompt-for-identifier nil)

(let (answers)
  (server-test--open "faulty.mq")
  (flymake-start)
  (server-test--wait "diagnostics" (lambda () (cdr (flymake-diagnostics))))
  (push (cons 'diagnostics (vconcat (server-test--diagnostics))) answers)
  (server-test--open "study.mq")
  (search-forward "%source opt")
  (backward-char)
  (xref-find-definitions (xref-backend-identifier-at-point (xref-find-backend)))
  (push (cons 'definition (buffer-substring-no-properties (line-beginning-position) (line-end-position))) answers)
  (eglot-rename "minimum")
  (push (cons 'renamed (buffer-substring-no-properties (point-min) (point-max))) answers)
  (eglot-format-buffer)
  (push (cons 'formatted (buffer-substring-no-properties (point-min) (point-max))) answers)
  (with-temp-file (getenv "ANSWERS")
    (insert (json-encode answers))))

;;; server.el ends here
